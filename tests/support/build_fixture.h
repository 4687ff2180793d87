#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/component/component_base.h"
#include "model/folders/folder.h"
#include "model/project/project.h"
#include "platform/threads/apartment.h"
#include "tests/platform/support/temporary_directory.h"
#include "tests/support/set_properties.h"
#include "tests/support/test_host.h"

namespace forgeyard::test {

// A project on the disk with one folder, and a host, to build it with real tools: programs of the test that
// the spawner runs. The registry, the runtime directory and the project lie in a directory of their own.
class BuildFixture : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;

  BuildFixture();
  ~BuildFixture() override;

  // The model's path of a file in the project's directory.
  BString path(std::string_view name) const;
  std::string narrowPath(std::string_view name) const { return path(name).narrow(); }

  // A program in the project's directory from the text of a shell script; what a command begins with.
  std::string putTool(std::string_view name, const std::string& script);
  // Adds a value to a registry key below "Software\Korvel\Build Tool".
  void setRegistry(const std::string& key, const std::string& name, const std::string& text);
  // Where the components made from now on look for the spawner.
  void useHome(const std::string& hostDirectory);

  // A new component that takes part in the project.
  template <class Component>
  Ref<Component> add(const char16_t* name) {
    const auto component = make<Component>();
    addComponent(static_cast<IComponent*>(component.get()), name);
    return component;
  }
  void connect(IComponent* from, IComponent* to);
  Ref<CFolder> addFolder(const char16_t* name);
  // Puts the file on the disk and into the folder.
  Ref<ISourceFile> addFile(CFolder& folder, std::string_view name, std::string_view content = {});

  Ref<IConfiguration> configuration();
  // The component's settings of the active configuration.
  template <class Settings>
  Ref<Settings> settings(IComponent* component) {
    Ref<IUnknown> found;
    check(component->get_Setting(configuration().get(), &found));
    return found.as<Settings>();
  }

  // Runs a task over the project and gives the lines that it wrote.
  Lines run(e_task task);
  // For E_TASK_COMPILE.
  void select(const std::vector<BString>& files) { task_->selection = files; }
  e_btr result() const { return result_; }
  // Gives the file a time that is later than that of every file so far.
  void touch(std::string_view name);

  TemporaryDirectory directory_;
  ApartmentScope apartment_;
  Ref<TestHost> host_ = make<TestHost>();
  Ref<FakeBuilderTask> task_ = make<FakeBuilderTask>();
  Ref<CProject> project_ = make<CProject>();

 private:
  void addComponent(IComponent* component, const char16_t* name);

  e_btr result_ = E_BTR_FATAL;
  int touches_ = 0;
};

// The texts of an enumerator.
std::vector<std::string> texts(const Ref<IEnumString>& names);
// The files that a component has worked out.
std::vector<std::string> outputsOf(IUnknown* component);
std::vector<std::string> inputsOf(IUnknown* component);
// The automatic dependencies of a file.
std::vector<std::string> automaticDeps(ISourceFile& file);

}  // namespace forgeyard::test
