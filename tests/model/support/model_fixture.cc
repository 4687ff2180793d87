#include "tests/model/support/model_fixture.h"

#include <array>
#include <sstream>

#include "model/configurations/configuration.h"
#include "model/folders/folder_settings.h"
#include "model/folders/source_file.h"
#include "platform/paths/host_path.h"
#include "platform/threads/apartment.h"

namespace forgeyard::test {

namespace {

std::span<const ClassEntry> fakeClasses() {
  static constexpr std::array classes{
      ClassEntry{FakeComponent::clsid, "FakeComponent", createObject<FakeComponent>}};
  return classes;
}

}  // namespace

Ref<IUnknown> FakeComponent::newSettings() {
  if (settings) return settings;
  return Ref<IUnknown>(static_cast<IFolderSettings*>(make<CFolderSettings>().get()));
}

ModelTest::ModelTest() : fakeClasses_(fakeClasses()), objectsBefore_(liveObjects - 2) {
  host_->provide(SID_BuildTool, static_cast<IBuilderTask*>(task_.get()));
}

ModelTest::~ModelTest() {
  advices_.clear();
  for (const Ref<CProject>& project : projects_) end(*project);
  projects_.clear();
  host_->clear();
  host_ = nullptr;
  task_ = nullptr;
  EXPECT_EQ(liveObjects, objectsBefore_) << "objects are left alive";
}

BString ModelTest::modelPath(const std::string& hostPath) {
  return BString::fromNarrow(HostPaths().toModel(hostPath).value());
}

Ref<CProject> ModelTest::project(const BString& fileName, std::string_view below) {
  const auto made = make<CProject>();
  check(made->SetServices(static_cast<IServiceLookup*>(host_.get())));
  check(made->put_Name(u"Demo"));
  check(made->put_FileName(fileName));
  check(made->put_WorkingDirectory(below.empty() ? modelPath(directory_.path()) : path(below)));
  projects_.push_back(made);
  return made;
}

Ref<CProject> ModelTest::newProject(const BString& fileName) {
  const Ref<CProject> made = project(fileName);
  EXPECT_EQ(made->ProjectInit(), S_OK);
  return made;
}

Ref<CProject> ModelTest::reload(CProject& saved) {
  BString fileName;
  EXPECT_EQ(saved.get_FileName(&fileName), S_OK);
  EXPECT_EQ(saved.ProjectSave(), S_OK);
  EXPECT_EQ(saved.saveFailure(), S_OK);
  EXPECT_EQ(saved.ProjectClose(), S_OK);
  const Ref<CProject> again = project(fileName);
  EXPECT_EQ(again->ProjectLoad(), S_OK);
  return again;
}

Ref<CFolder> ModelTest::addFolder(CProject& project, const BString& name, const BString& extension) {
  const auto folder = make<CFolder>();
  check(folder->SetParent(static_cast<IProject*>(&project), static_cast<IServiceLookup*>(host_.get())));
  check(folder->Init());
  check(folder->put_Name(name));
  check(folder->put_Extension(extension));
  Ref<IComponents> components;
  check(project.get_Components(&components));
  EXPECT_EQ(components->Add(static_cast<IFolder*>(folder.get())), S_OK);
  return folder;
}

Ref<FakeComponent> ModelTest::addFake(CProject& project, const BString&) {
  const auto component = make<FakeComponent>();
  check(component->SetParent(static_cast<IProject*>(&project), static_cast<IServiceLookup*>(host_.get())));
  check(component->Init());
  Ref<IComponents> components;
  check(project.get_Components(&components));
  EXPECT_EQ(components->Add(static_cast<IComponent*>(component.get())), S_OK);
  return component;
}

void ModelTest::connect(CProject& project, IComponent* from, IComponent* to) {
  Ref<IConnections> connections;
  check(project.get_Connections(&connections));
  EXPECT_EQ(connections->New(from, to, nullptr), S_OK);
}

Ref<ISourceFile> ModelTest::addFile(CFolder& folder, const BString& name) {
  Ref<ISourceFiles> files;
  check(folder.get_SourceFiles(&files));
  const auto file = make<CSourceFile>();
  check(file->put_Project(folder.owner().get()));
  check(file->put_PersistAs(name));
  check(file->put_Name(name));
  EXPECT_EQ(files->Add(file.get()), S_OK);
  return file;
}

Ref<IConfiguration> ModelTest::newConfiguration(CProject& project, const BString& name,
                                                IConfiguration* base) {
  Ref<IConfigurations> configurations;
  check(project.get_Configurations(&configurations));
  Ref<IConfiguration> made;
  EXPECT_EQ(configurations->New(name, base, &made), S_OK);
  return made;
}

void ModelTest::insert(CProject& project, const std::vector<BString>& names, IDispatch* folder) {
  EXPECT_EQ(project.InsertFiles(enumerator(names).get(), folder), S_OK);
}

Ref<NotifySink> ModelTest::listen(IUnknown* object) {
  const auto sink = make<NotifySink>();
  Advice advice;
  EXPECT_EQ(advice.connect<IPropertyNotifySink>(object, sink.get()), S_OK);
  advices_.push_back(std::move(advice));
  return sink;
}

std::string text(const BString& value) {
  return value.isNull() ? "<null>" : value.narrow();
}

std::string name(ISourceFile* file) {
  BString value;
  check(file->get_Name(&value));
  return text(value);
}

std::string persistAs(ISourceFile* file) {
  BString value;
  check(file->get_PersistAs(&value));
  return text(value);
}

std::vector<std::string> texts(const Ref<IEnumString>& names) {
  std::vector<std::string> result;
  forEach(names, [&](const BString& name) { result.push_back(text(name)); });
  return result;
}

std::vector<std::string> texts(const Ref<ISimpleCollection>& names) {
  return texts(names.as<IEnumString>());
}

std::vector<std::string> fileNames(CFolder& folder) {
  std::vector<std::string> result;
  for (const Ref<ISourceFile>& file : folder.sourceFiles()) result.push_back(name(file.get()));
  return result;
}

std::vector<std::string> outputs(IBuilderPrivate& component) {
  Ref<IEnumString> files;
  check(component.OutputFilesEnum(&files));
  return files ? texts(files) : std::vector<std::string>{"<null>"};
}

std::int32_t dirty(IProject& project) {
  std::int32_t value = -1;
  check(project.get_Dirty(&value));
  return value;
}

Ref<IEnumString> enumerator(std::vector<BString> names) {
  return make<ListEnumerator<IEnumString>>(std::move(names));
}

namespace {

void dumpConfiguration(std::ostream& out, IConfiguration& configuration) {
  BString name;
  BString output;
  BString intermediate;
  std::int32_t update = 0;
  std::int32_t buildDirty = 0;
  check(configuration.get_Name(&name));
  check(configuration.get_OutputDirectory(&output));
  check(configuration.get_IntermediateDirectory(&intermediate));
  check(configuration.get_UpdateFileDependencies(&update));
  check(configuration.get_BuildDirty(&buildDirty));
  // A stored text never comes back as null.
  out << "configuration " << name.narrow() << " | " << output.narrow() << " | " << intermediate.narrow()
      << " | " << update << buildDirty << "\n";
  const Ref<IKVSupportCookies> cookies = query<IKVSupportCookies>(&configuration);
  Ref<IEnumString> names;
  check(cookies->GetCookies(&names));
  forEach(names, [&](const BString& cookie) {
    BString value;
    check(cookies->get_Cookie(cookie, &value));
    out << "  cookie " << text(cookie) << " = " << text(value) << "\n";
  });
}

void dumpFolder(std::ostream& out, CProject& project, IComponent& component) {
  const Ref<IFolder> folder = query<IFolder>(&component);
  BString extension;
  check(folder->get_Extension(&extension));
  out << "  extension " << extension.narrow() << "\n";
  for (const Ref<IConfiguration>& configuration : project.contents().configurations) {
    Ref<IUnknown> settings;
    std::int32_t enabled = -1;
    check(component.get_Setting(configuration.get(), &settings));
    check(settings.as<IFolderSettings>()->get_Enabled(&enabled));
    out << "  enabled " << enabled << "\n";
  }
  for (const Ref<ISourceFile>& file : folder.as<IFolderFiles>()->sourceFiles()) {
    std::int32_t control = 0;
    check(file->get_SourceControl(&control));
    out << "  file " << persistAs(file.get()) << " | " << name(file.get()) << " | " << control << "\n";
    const Ref<ISourceFileDependencies> lists = file.as<ISourceFileDependencies>();
    for (const BString& entry : lists->automaticDependencies()) out << "    a " << entry.narrow() << "\n";
    for (const BString& entry : lists->manualDependencies()) out << "    m " << entry.narrow() << "\n";
  }
}

std::int32_t idOf(IComponent* component) {
  std::int32_t id = -1;
  check(component->get_Id(&id));
  return id;
}

}  // namespace

std::string dump(CProject& project) {
  const ProjectContents& contents = project.contents();
  std::ostringstream out;
  out << contents.settings.name.narrow() << " | " << contents.settings.fileName.narrow() << " | "
      << contents.settings.ssRoot.narrow() << " | " << contents.settings.ssDatabasePath.narrow() << " | "
      << contents.settings.ssVersion << " | " << contents.settings.nextComponentId << "\n";
  for (const Ref<IConfiguration>& configuration : contents.configurations)
    dumpConfiguration(out, *configuration);
  BString active(u"<none>");
  if (contents.active) check(contents.active->get_Name(&active));
  out << "active " << active.narrow() << "\n";
  for (const Ref<IComponent>& component : contents.components) {
    BString name;
    check(component->get_ComponentName(&name));
    out << "component " << idOf(component.get()) << " " << name.narrow() << "\n";
    if (component.as<IFolder>()) dumpFolder(out, project, *component);
  }
  Ref<IConnections> connections;
  check(project.get_Connections(&connections));
  forEachObject<IConnection>(*connections, [&](IConnection& connection) {
    Ref<IComponent> from;
    Ref<IComponent> to;
    check(connection.get_From(&from));
    check(connection.get_To(&to));
    out << "connection " << idOf(from.get()) << " -> " << idOf(to.get()) << "\n";
  });
  return out.str();
}

}  // namespace forgeyard::test
