#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tests/e2e/running_program.h"
#include "tests/platform/support/temporary_directory.h"

namespace forgeyard::e2e {

// Asks again and again; false when it doesn't hold within the time.
bool eventually(const std::function<bool()>& holds, int milliseconds = 60000);
// Whether the process has a file of that name open.
bool hasOpen(pid_t process, std::string_view name);

// A user of one's own for each test: a home with registry, workspace and runtime directory, and a directory
// for projects, all gone at the end. Running the console host in it is one call.
class Sandbox : public testing::Test {
 protected:
  Sandbox();
  // Nothing that the test started may be left behind.
  ~Sandbox() override;

  // Where the host runs: "project" below the sandbox unless changed.
  std::string directory() const { return directory_; }
  void setDirectory(const std::string& name);
  // Programs are taken from here: those of the build unless changed.
  void setPrograms(const std::string& directory) { programs_ = directory; }

  // A file of the project directory.
  std::string path(std::string_view name) const { return directory_ + "/" + std::string(name); }
  void put(std::string_view name, std::string_view content) const;
  // Makes the file newer than everything else.
  void touch(std::string_view name) const;
  bool exists(std::string_view name) const;
  std::string content(std::string_view name) const { return contentOf(path(name)); }

  // The host's command line in the sandbox.
  Start start(Lines arguments) const;
  Outcome forgeyard(Lines arguments) const;
  // Fails the test unless the exit code is 0.
  Outcome must(Lines arguments) const;
  Outcome run(const std::string& program, Lines arguments = {}) const;

  // A project "p.nqp" of a folder "src", a compiler "cc" and a linker component "link" that makes "out/prog",
  // with these sources, for the host's own target; dependencies are followed.
  void makeProgramProject(const Lines& sources) const;
  // A project "p.nqp" of a folder "src" with these sources and a component "tool" that runs the command for
  // each. The sources are made if they are missing.
  void makeToolProject(const Lines& sources, const std::string& command) const;
  static std::string scriptedTool();

  // Waits until the file is there; fails the test after a minute.
  void waitForFile(std::string_view name) const;
  // Process ids of all that runs in this sandbox.
  std::set<pid_t> processes() const;
  // Waits until nothing runs in this sandbox any more; false after ten seconds.
  bool becomesQuiet() const;

 private:
  TemporaryDirectory home_;
  std::string directory_;
  std::string programs_;
};

// What a build told, taken apart.
Lines compiled(const Outcome& outcome);  // the stems of the objects that compilers were run for, sorted
int toolRuns(const Outcome& outcome);    // how many tools ended by themselves
int count(const Outcome& outcome, std::string_view line);

}  // namespace forgeyard::e2e
