#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/tree.h"
#include "platform/threads/apartment.h"
#include "tests/support/test_host.h"
#include "typelib/buildtool.h"

namespace forgeyard::bench {

// A running host: the module loaded, one build tool, and projects made and built through the module's
// interfaces.
class BenchHost {
 public:
  explicit BenchHost(const std::string& binDirectory);
  ~BenchHost();

  // A new project in `root` with a folder "sources" and the configuration "Default", whose target is "bench".
  Ref<IProject> newProject(const std::string& root, const std::string& fileName);
  Ref<IProject> loadProject(const std::string& root, const std::string& fileName);
  void closeProject(IProject& project);
  // A tool component that the folder feeds.
  Ref<IDispatch> addTool(IProject& project, const Guid& clsid, const std::string& name);
  void insertFiles(IProject& project, const Tree& tree);
  // Gives each source its headers as automatic dependencies.
  void setDependencies(IProject& project, const Tree& tree);

  // Sets a property of the tool's settings in the active configuration.
  void set(IProject& project, IDispatch& component, const std::string& property, const Variant& value);
  void setTarget(IProject& project, const std::string& target);

  // Runs a command of the build tool to the end of its build run.
  void build(IProject& project, std::uint32_t command);
  // Lines of the output tab since the last build began.
  std::vector<std::string> lines() const { return host_->lines(); }

 private:
  ApartmentScope apartment_;
  void* module_ = nullptr;
  Ref<test::TestHost> host_;
  Ref<IBuildTool> tool_;
};

}  // namespace forgeyard::bench
