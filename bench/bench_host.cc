#include "bench/bench_host.h"

#include <dlfcn.h>

#include <stdexcept>

#include "platform/com/class_table.h"
#include "platform/files/host_files.h"
#include "platform/threads/thread.h"
#include "typelib/classes.h"
#include "typelib/component.h"
#include "typelib/configuration.h"
#include "typelib/connection.h"
#include "typelib/cookies.h"
#include "typelib/folder.h"
#include "typelib/project.h"

namespace forgeyard::bench {

namespace {

class BuildEnd final : public ComObject<IBuildToolE> {
 public:
  HRESULT OnBuildStart(e_task, std::int32_t*) override { return S_OK; }
  HRESULT OnBuildEnd() override {
    ended = true;
    Apartment::current()->quit();
    return S_OK;
  }
  bool ended = false;
};

BString wide(const std::string& text) {
  return BString::fromNarrow(text);
}

template <class I>
Ref<I> as(const Variant& value) {
  Ref<IUnknown> object;
  check(value.toUnknown(&object));
  return object.as<I>();
}

template <class I, class Collection, class Body>
void each(Collection& collection, Body&& body) {
  Ref<IUnknown> walk;
  check(collection.get__NewEnum(&walk));
  forEach(walk.as<IEnumVARIANT>(), [&](const Variant& value) {
    if (const Ref<I> object = as<I>(value)) body(*object);
  });
}

Ref<IFolder> folderOf(IProject& project) {
  Ref<IComponents> components;
  check(project.get_Components(&components));
  Ref<IFolder> found;
  each<IFolder>(*components, [&](IFolder& folder) { found = Ref<IFolder>(&folder); });
  return found;
}

Ref<IConfiguration> activeOf(IProject& project) {
  Ref<IConfiguration> configuration;
  check(project.get_ActiveConfiguration(&configuration));
  return configuration;
}

}  // namespace

BenchHost::BenchHost(const std::string& binDirectory) : host_(make<test::TestHost>()) {
  module_ = dlopen((binDirectory + "/Forgeyard.so").c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!module_) throw std::runtime_error(dlerror());
  addClassSource(reinterpret_cast<GetClassObject>(dlsym(module_, "DllGetClassObject")));
  tool_ = createInstance<IBuildTool>(CLSID_BuildTool);
  if (!tool_) throw std::runtime_error("the module has no build tool");
  check(tool_.as<ILoadedObject>()->OnLoad(static_cast<IServiceLookup*>(host_.get())));
}

BenchHost::~BenchHost() {
  ignore(tool_.as<ILoadedObject>()->OnUnload());
  tool_ = nullptr;
  host_->clear();
  Thread::waitForAll();
}

Ref<IProject> BenchHost::newProject(const std::string& root, const std::string& fileName) {
  Ref<IProjects> projects;
  Ref<IProject> project;
  check(tool_->get_Projects(&projects));
  check(projects->New(&project));
  check(project->put_Name(wide(fileName)));
  check(project->put_WorkingDirectory(toModel(root).path));
  check(project->put_FileName(wide(fileName)));
  check(project->ProjectInit());
  const Ref<IComponent> folder = createInstance<IComponent>(CLSID_Folder);
  host_->fillDialog([](std::span<DialogField> fields) {
    fields[0].text = u"sources";
    fields[1].text = u"c";
    return true;
  });
  Ref<IComponents> components;
  check(project->get_Components(&components));
  check(components->New(folder.get()));
  return project;
}

Ref<IProject> BenchHost::loadProject(const std::string& root, const std::string& fileName) {
  Ref<IProjects> projects;
  Ref<IProject> project;
  check(tool_->get_Projects(&projects));
  check(projects->New(&project));
  check(project->put_WorkingDirectory(toModel(root).path));
  check(project->put_FileName(wide(fileName)));
  check(project->ProjectLoad());
  return project;
}

void BenchHost::closeProject(IProject& project) {
  const Ref<IProject> kept(&project);
  Ref<IProjects> projects;
  check(tool_->get_Projects(&projects));
  check(tool_->put_ActiveProject(nullptr));
  check(projects->Delete(&project));
  check(project.ProjectClose());
  check(project.OnClose());
}

Ref<IDispatch> BenchHost::addTool(IProject& project, const Guid& clsid, const std::string& name) {
  const Ref<IComponent> component = createInstance<IComponent>(clsid);
  host_->fillDialog([&](std::span<DialogField> fields) {
    fields[0].text = wide(name);
    return true;
  });
  Ref<IComponents> components;
  check(project.get_Components(&components));
  check(components->New(component.get()));
  Ref<IConnections> connections;
  Ref<IConnection> connection;
  check(project.get_Connections(&connections));
  check(connections->New(folderOf(project).as<IComponent>().get(), component.get(), &connection));
  return component;
}

void BenchHost::insertFiles(IProject& project, const Tree& tree) {
  std::vector<BString> names;
  for (const std::string& source : tree.sources) names.push_back(toModel(tree.root + "/" + source).path);
  check(project.InsertFiles(make<ListEnumerator<IEnumString>>(std::move(names)).get(), nullptr));
}

void BenchHost::setDependencies(IProject& project, const Tree& tree) {
  Ref<ISourceFiles> files;
  check(folderOf(project)->get_SourceFiles(&files));
  std::vector<BString> headers;
  for (const std::string& header : tree.headers) headers.push_back(wide(tree.root + "/" + header));
  std::size_t source = 0;
  each<ISourceFile>(*files, [&](ISourceFile& file) {
    std::vector<BString> names;
    for (const int header : tree.includes[source]) names.push_back(headers[static_cast<std::size_t>(header)]);
    check(file.put_AutomaticDeps(make<ListEnumerator<IEnumString>>(std::move(names)).get()));
    ++source;
  });
}

void BenchHost::set(IProject& project, IDispatch& component, const std::string& property,
                    const Variant& value) {
  Ref<IUnknown> settings;
  check(query<IComponent>(&component)->get_Setting(activeOf(project).get(), &settings));
  const Ref<IDispatch> dispatch = settings.as<IDispatch>();
  const BString name = wide(property);
  std::int32_t id = 0;
  check(dispatch->GetIDsOfNames({&name, 1}, &id));
  check(dispatch->Invoke(id, InvokeKind::PropertyPut, {&value, 1}, nullptr, nullptr));
}

void BenchHost::setTarget(IProject& project, const std::string& target) {
  check(activeOf(project).as<IKVSupportCookies>()->put_Cookie(u"Target", wide(target)));
}

void BenchHost::build(IProject& project, std::uint32_t command) {
  Ref<IProject> active;
  check(tool_->get_ActiveProject(&active));
  if (active.get() != &project) check(tool_->put_ActiveProject(&project));
  const Ref<BuildEnd> end = make<BuildEnd>();
  Advice advice;
  check(advice.connect<IBuildToolE>(tool_.get(), end.get()));
  check(tool_.as<IUseCommands>()->RunCommand(command));
  // The end asks the apartment to quit, and that request waits for this call if the build has ended already.
  apartment_->run();
}

}  // namespace forgeyard::bench
