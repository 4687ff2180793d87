// build, rebuild, clean, compile and stop as commands: their ends, their options and their output. What a
// build does is tested elsewhere.

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using e2e::RunningProgram;
using testing::HasSubstr;
namespace fs = std::filesystem;

class BuildCommand : public ConsoleSandbox {
 protected:
  // A build whose only tool places the file "running" and then does what the words say.
  void makeHanging(const std::string& words) const {
    makeToolProject({"a.in"}, scriptedTool() + " pid running " + words);
  }
};

// Gone, or waiting for its parent to take notice.
bool hasEnded(pid_t process) {
  const std::string status = contentOf("/proc/" + std::to_string(process) + "/stat");
  const std::size_t state = status.rfind(") ");
  return state == status.npos || status[state + 2] == 'Z';
}

TEST_F(BuildCommand, ExitCodeTellsHowItEnded) {
  makeToolProject({"a.in"}, scriptedTool() + " touch \"$(OutDir)a.out\"");
  for (const char* command : {"build", "rebuild", "clean"})
    EXPECT_EQ(forgeyard({command}).exitCode, 0) << command;
  EXPECT_EQ(forgeyard({"compile", "a.in"}).exitCode, 0);
  must({"set", "tool", "Command=" + scriptedTool() + " exit 3"});
  for (const char* command : {"build", "rebuild"}) EXPECT_EQ(forgeyard({command}).exitCode, 1) << command;
  EXPECT_EQ(forgeyard({"compile", "a.in"}).exitCode, 1);
  EXPECT_EQ(forgeyard({"clean"}).exitCode, 0);
}

TEST_F(BuildCommand, UnknownNamesAreRefused) {
  makeToolProject({"a.in", "b.in"}, scriptedTool());
  const Refusal table[] = {
      {{"compile", "c.in", "a.in"}, "c.in is no file of the project. Did you mean a.in?"},
      {{"build", "-c", "Defalt"}, "Did you mean Default?"},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
}

TEST_F(BuildCommand, QuietShowsWhatToolsSayAndWhatFails) {
  makeToolProject({"a.in", "b.in"}, scriptedTool() + " touch \"$(OutDir)$(FileName).out\"");
  const Outcome silent = must({"-q", "build"});
  EXPECT_EQ(silent.output + silent.errors, "");
  const std::string failing = scriptedTool() + " print \"$(FileName) is bad\" exit 4";
  must({"set", "tool", "Command=" + failing});
  const Outcome loud = forgeyard({"build", "-q"});
  EXPECT_EQ(loud.exitCode, 1);
  EXPECT_THAT(loud.output, HasSubstr(" exit 4\na is bad\nExit Code: 4 (0x4).\n"));
  EXPECT_THAT(loud.output, HasSubstr("b is bad\n"));
  EXPECT_THAT(loud.output, testing::EndsWith("Component \"tool\" result: ERROR\nFinal result: ERRORS\n"
                                             "a.in: error: \"tool\" ended with exit code 4\n"
                                             "b.in: error: \"tool\" ended with exit code 4\n"
                                             "2 errors.\n"));
}

TEST_F(BuildCommand, ConfigurationOfOneCallLeavesTheActiveOneActive) {
  makeToolProject({"a.in"}, scriptedTool() + " touch \"$(OutDir)a.out\"");
  must({"config", "add", "Other", "--from", "Default"});
  must({"config", "set", "-c", "Other", "OutputDirectory=other"});
  EXPECT_THAT(shown({"build", "-c", "Other"}), HasSubstr("Configuration: Other\n"));
  EXPECT_TRUE(exists("other/a.out"));
  EXPECT_FALSE(exists("out/a.out"));
  EXPECT_THAT(shown({"config", "list"}), HasSubstr("* Default "));
  EXPECT_THAT(shown({"build", "-c", "Other"}), HasSubstr("All outputs up to date."));
  EXPECT_THAT(shown({"get", "tool", "BuildDirty", "--all-configs"}), HasSubstr("Default: 1\nOther: 0\n"));
}

TEST_F(BuildCommand, NoopLeavesTheProjectFileUntouched) {
  makeToolProject({"a.in"}, scriptedTool() + " touch \"$(OutDir)a.out\"");
  must({"build"});
  const auto written = fs::last_write_time(path("p.nqp"));
  const std::string before = content("p.nqp");
  must({"build"});
  must({"file", "list"});
  must({"get", "tool"});
  EXPECT_EQ(content("p.nqp"), before);
  EXPECT_EQ(fs::last_write_time(path("p.nqp")), written);
}

TEST_F(BuildCommand, ProjectInUseIsRefusedWithItsHolder) {
  makeHanging("wait go");
  RunningProgram build(start({"build"}));
  waitForFile("running");
  for (const Lines& line : {Lines{"build"}, Lines{"folder", "add", "x"}, Lines{"file", "list"}}) {
    const Outcome second = forgeyard(line);
    EXPECT_EQ(second.exitCode, 2);
    EXPECT_EQ(second.errors, "forgeyard: " + path("p.nqp") + " is open in process " +
                                 std::to_string(build.id()) + " (forgeyard).\n");
  }
  put("go", "");
  EXPECT_EQ(build.finish().exitCode, 0);
}

TEST_F(BuildCommand, SecondInterruptEndsTheToolByForce) {
  makeToolProject({"a.in", "b.in"}, scriptedTool() + " pid $(FileName).running deaf hang");
  RunningProgram build(start({"build"}));
  waitForFile("a.running");
  pid_t tool = 0;
  pid_t spawner = 0;
  std::istringstream(content("a.running")) >> tool >> spawner;
  // The spawner, which would end the tool after its time of grace, can do nothing.
  ::kill(spawner, SIGSTOP);
  build.signal(SIGINT);
  build.signal(SIGTERM);
  EXPECT_TRUE(e2e::eventually([&] { return hasEnded(tool); }));
  ::kill(spawner, SIGCONT);
  const Outcome outcome = build.finish();
  EXPECT_EQ(outcome.exitCode, 130);
  EXPECT_THAT(outcome.output, HasSubstr("Final result: STOPPED"));
  EXPECT_FALSE(exists("b.running"));
  EXPECT_TRUE(becomesQuiet());
  must({"file", "list"});
}

TEST_F(BuildCommand, LostReaderOfTheOutputStopsTheBuild) {
  makeHanging("print line wait go print more hang");
  // The reader takes one line and goes.
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  e2e::Start host = start({"build"});
  const pid_t shell = ::fork();
  if (shell == 0) {
    ::dup2(ends[1], STDOUT_FILENO);
    ::chdir(host.directory.c_str());
    for (const std::string& entry : host.environment) ::putenv(const_cast<char*>(entry.c_str()));
    ::execl(host.command[0].c_str(), "forgeyard", "build", nullptr);
    ::_exit(127);
  }
  ::close(ends[1]);
  std::string seen;
  char byte = 0;
  while (seen.find("\nline\n") == seen.npos && ::read(ends[0], &byte, 1) == 1) seen += byte;
  ::close(ends[0]);
  put("go", "");
  int status = 0;
  ::waitpid(shell, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 141);
  EXPECT_TRUE(becomesQuiet());
  must({"file", "list"});
}

TEST_F(BuildCommand, FullDiskUnderTheOutputIsTold) {
  makeToolProject({"a.in"}, scriptedTool() + " touch \"$(OutDir)a.out\"");
  e2e::Start shell = start({});
  shell.command = {"/bin/sh", "-c", "exec " + shell.command[0] + " build > /dev/full"};
  const Outcome outcome = RunningProgram(shell).finish();
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("Standard output can't be written"));
}

}  // namespace
}  // namespace forgeyard::console
