#include "tests/support/build_fixture.h"

#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "engine/run/dependency_times.h"
#include "platform/paths/host_path.h"
#include "platform/registry/registry.h"
#include "platform/registry/registry_keys.h"
#include "platform/threads/event.h"
#include "tests/support/places.h"

namespace forgeyard::test {

namespace {

BString modelPath(const std::string& hostPath) {
  return BString::fromNarrow(HostPaths().toModel(hostPath).value());
}

// The end of a build chain: takes the project's answer.
class Answer final : public ComObject<IBuilderOutput> {
 public:
  e_btr status = E_BTR_FATAL;
  Event given;

  HRESULT Error() override { return take(E_BTR_ERROR); }
  HRESULT Completed() override { return take(E_BTR_COMPLETED); }
  HRESULT Stopped() override { return take(E_BTR_STOPPED); }

 private:
  HRESULT take(e_btr answer) {
    status = answer;
    given.set();
    return S_OK;
  }
};

}  // namespace

BuildFixture::BuildFixture() {
  setenv("FORGEYARD_REGISTRY", (directory_ / "registry").c_str(), 1);
  std::filesystem::create_directory(directory_ / "run");
  std::filesystem::permissions(directory_ / "run", std::filesystem::perms::owner_all);
  setenv("FORGEYARD_RUNTIME_DIR", (directory_ / "run").c_str(), 1);
  useHome(std::filesystem::path(places::programs()).parent_path().string());
  host_->provide(SID_BuildTool, static_cast<IBuilderTask*>(task_.get()));
  check(project_->SetServices(static_cast<IServiceLookup*>(host_.get())));
  check(project_->put_WorkingDirectory(modelPath(directory_.path())));
  check(project_->put_FileName(u"test.nqp"));
  check(project_->ProjectInit());
  check(configuration()->put_IntermediateDirectory(u"obj"));
  check(configuration()->put_OutputDirectory(u"out"));
}

BuildFixture::~BuildFixture() {
  ignore(project_->OnClose());
  host_->clear();
  unsetenv("FORGEYARD_REGISTRY");
  unsetenv("FORGEYARD_RUNTIME_DIR");
}

BString BuildFixture::path(std::string_view name) const {
  return modelPath(directory_ / name);
}

std::string BuildFixture::putTool(std::string_view name, const std::string& script) {
  const std::string file = directory_.put(name, "#!/bin/sh\n" + script);
  std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  return modelPath(file).narrow();
}

void BuildFixture::setRegistry(const std::string& key, const std::string& name, const std::string& text) {
  EXPECT_FALSE(Registry::update(directory_ / "registry", [&](Registry& registry) {
    registry.setValue("Software\\Korvel\\Build Tool\\" + key, name, text);
  }));
}

void BuildFixture::useHome(const std::string& hostDirectory) {
  EXPECT_FALSE(Registry::update(directory_ / "registry", [&](Registry& registry) {
    registry.setValue(registry_keys::kKorvel, registry_keys::kHome, modelPath(hostDirectory).narrow());
  }));
}

void BuildFixture::addComponent(IComponent* component, const char16_t* name) {
  host_->fillDialog([&](std::span<DialogField> fields) {
    fields[0].text = name;
    return true;
  });
  Ref<IComponents> components;
  check(project_->get_Components(&components));
  check(components->New(component));
}

void BuildFixture::connect(IComponent* from, IComponent* to) {
  Ref<IConnections> connections;
  check(project_->get_Connections(&connections));
  Ref<IConnection> connection;
  check(connections->New(from, to, &connection));
}

Ref<CFolder> BuildFixture::addFolder(const char16_t* name) {
  return add<CFolder>(name);
}

Ref<ISourceFile> BuildFixture::addFile(CFolder& folder, std::string_view name, std::string_view content) {
  directory_.put(name, content);
  Ref<ISourceFiles> files;
  check(folder.get_SourceFiles(&files));
  Ref<ISourceFile> file;
  check(files->New(&file));
  check(file->put_Name(path(name)));
  return file;
}

Ref<IConfiguration> BuildFixture::configuration() {
  Ref<IConfiguration> active;
  check(project_->get_ActiveConfiguration(&active));
  return active;
}

BuildFixture::Lines BuildFixture::run(e_task task) {
  check(host_->ClearTab(u"Build"));
  forgetFileTimes();
  task_->task = task;
  const auto answer = make<Answer>();
  check(project_->PreBuild(answer.get()));
  apartment_->waitPumping({&answer->given});
  result_ = answer->status;
  return host_->lines();
}

void BuildFixture::touch(std::string_view name) {
  std::filesystem::last_write_time(
      directory_ / name, std::filesystem::file_time_type::clock::now() + std::chrono::hours(++touches_));
}

std::vector<std::string> texts(const Ref<IEnumString>& names) {
  std::vector<std::string> result;
  forEach(names, [&](const BString& name) { result.push_back(name.narrow()); });
  return result;
}

std::vector<std::string> outputsOf(IUnknown* component) {
  Ref<IEnumString> names;
  check(query<IBuilderPrivate>(component)->OutputFilesEnum(&names));
  return texts(names);
}

std::vector<std::string> inputsOf(IUnknown* component) {
  Ref<IEnumString> names;
  check(query<IBuilderPrivate>(component)->InputFilesEnum(&names));
  return texts(names);
}

std::vector<std::string> automaticDeps(ISourceFile& file) {
  Ref<ISimpleCollection> collection;
  check(file.get_AutomaticDeps(&collection));
  Ref<IUnknown> walk;
  check(collection->get__NewEnum(&walk));
  std::vector<std::string> result;
  forEach(walk.as<IEnumVARIANT>(), [&](const Variant& value) { result.push_back(shown(value)); });
  return result;
}

}  // namespace forgeyard::test
