#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/adapters/scratch_tree.h"
#include "tests/spawner/spawned.h"

namespace forgeyard {

// Runs adapters as a build does: through the spawner, in the project's directory, with the project's spelling
// of that in PWD. In commands and expectations "~" is the test's directory in the model's spelling and "%" in
// the host's. Events, registry and temporary files are the test's own.
class ProgramTest : public testing::Test {
 protected:
  ProgramTest() {
    tree_.makeDirectory("run");
    tree_.makeDirectory("tmp");
    std::filesystem::permissions(tree_ / "run", std::filesystem::perms::owner_all);
  }

  Result run(const std::string& command) { return run(command, tree_.path()); }
  Result run(const std::string& command, const std::string& directory) {
    ProcessOptions options = optionsFor({SPAWNER, tree_.in(command)});
    options.workingDirectory = directory;
    return spawn(options);
  }
  // A tool of this system, looked for along the PATH.
  static Result runTool(const std::vector<std::string>& words) {
    Spawned program(words);
    return resultOf(program);
  }

  // A program for tests that need a tool which does as told.
  std::string putScript(const std::string& name, const std::string& body) {
    std::string file = tree_.put(name, "#!/bin/sh\n" + body);
    std::filesystem::permissions(file, std::filesystem::perms(0755));
    return file;
  }

  ScratchTree tree_;
  ScopedVariable runtime_{"FORGEYARD_RUNTIME_DIR", tree_ / "run"};
  ScopedVariable registry_{"FORGEYARD_REGISTRY", tree_ / "registry"};
  ScopedVariable temporary_{"TMPDIR", tree_ / "tmp"};
  ScopedVariable pwd_{"PWD", tree_.path()};
};

}  // namespace forgeyard
