// watch: one build for each change, none without.

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class WatchCommand : public ConsoleSandbox {
 protected:
  static int builds(const std::string& output) {
    int count = 0;
    for (std::size_t at = output.find("Final result: "); at != output.npos;
         at = output.find("Final result: ", at + 1))
      ++count;
    return count;
  }
  // Waits until so many builds have ended.
  static void expectBuilds(e2e::RunningProgram& watch, int count) {
    while (builds(watch.seen()) < count) ASSERT_TRUE(watch.readSome()) << watch.seen();
  }
  // Far longer than a watch takes to begin with a build that it wants.
  static void pause() { std::this_thread::sleep_for(std::chrono::milliseconds(600)); }
};

TEST_F(WatchCommand, BuildsOnceForEachChangeUntilItIsStopped) {
  put("a.c", "#include \"a.h\"\nint main(void) { return A; }\n");
  put("a.h", "#define A 0\n");
  put("b.c", "int b;\n");
  makeProgramProject({"a.c", "b.c"});
  e2e::RunningProgram watch(start({"watch"}));
  expectBuilds(watch, 1);
  pause();

  put("unrelated.txt", "1\n");
  put("obj/unrelated.txt", "1\n");
  pause();
  touch("a.h");
  expectBuilds(watch, 2);
  pause();

  // As an editor and a version control system write: in steps, and beside the file first.
  for (int i = 0; i < 5; ++i) {
    put("b.c.new", "int b = " + std::to_string(i) + ";\n");
    std::filesystem::rename(path("b.c.new"), path("b.c"));
    touch("a.c");
  }
  expectBuilds(watch, 3);
  pause();

  must({"set", "cc", "WarningLevel=2"});
  expectBuilds(watch, 4);
  put("c.c", "int c;\n");
  must({"file", "add", "c.c"});
  expectBuilds(watch, 5);
  pause();
  put("a.c", "int main(void) { return\n");
  expectBuilds(watch, 6);
  put("a.c", "int main(void) { return 0; }\n");
  expectBuilds(watch, 7);
  pause();

  watch.interrupt();
  const Outcome outcome = watch.finish();
  EXPECT_EQ(outcome.exitCode, 130);
  EXPECT_EQ(builds(outcome.output), 7) << outcome.output;
  EXPECT_THAT(outcome.output, HasSubstr("Final result: ERRORS"));
  EXPECT_EQ(e2e::count(outcome, "All outputs up to date."), 0) << "nothing is built in vain";
  EXPECT_THAT(outcome.errors, HasSubstr("Watching 4 files of "));
}

TEST_F(WatchCommand, WhatAToolRewritesInEachBuildKeepsNothingGoing) {
  makeToolProject({"a.txt"}, "touch \"$(FileFullPath)\"");
  must({"set", "tool", "Output="});
  e2e::RunningProgram watch(start({"watch"}));
  expectBuilds(watch, 1);
  pause();
  watch.interrupt();
  EXPECT_LE(builds(watch.finish().output), 2);
}

TEST_F(WatchCommand, AProjectThatIsGoneForAWhileIsWaitedFor) {
  makeToolProject({"a.txt"}, "true");
  e2e::RunningProgram watch(start({"watch"}));
  expectBuilds(watch, 1);
  pause();
  std::filesystem::rename(path("p.nqp"), path("away"));
  pause();
  touch("a.txt");
  pause();
  std::filesystem::rename(path("away"), path("p.nqp"));
  expectBuilds(watch, 2);
  watch.interrupt();
  EXPECT_THAT(watch.finish().errors, HasSubstr("There is no project file"));
}

// An editor of this user saves while tools run, and again while they run for that.
TEST_F(WatchCommand, NoChangeDuringABuildIsLost) {
  put("tool.sh", "echo >> n\nruns=`wc -l < n`\n[ $runs -gt 2 ] || echo $runs > a.txt\ncp a.txt a.out\n");
  put("n", "");
  makeToolProject({"a.txt"}, "sh tool.sh \"$(FileFullPath)\"");
  must({"set", "tool", "Output="});
  e2e::RunningProgram watch(start({"watch"}));
  expectBuilds(watch, 3);
  watch.interrupt();
  watch.finish();
  EXPECT_EQ(content("a.out"), content("a.txt"));
}

// Checked out by version control in the middle of a build, which can't store what it has learnt then.
TEST_F(WatchCommand, AProjectThatIsReplacedDuringABuildIsBuiltAnew) {
  makeProgramProject({"a.c"});
  put("a.c", "int main(void) { return 0; }\n");
  must({"component", "add", "cmdline", "last"});
  must({"connect", "cc", "last"});
  must({"set", "last", "Output=", "RunOnce=1", "Command=sh -c \"touch began; sleep 1\""});
  e2e::RunningProgram watch(start({"watch"}));
  waitForFile("began");
  put("other.nqp", content("p.nqp"));
  must({"-p", "other.nqp", "set", "last", "Command=sh -c \"touch replaced\""});
  std::filesystem::rename(path("other.nqp"), path("p.nqp"));
  waitForFile("replaced");
  watch.interrupt();
  EXPECT_THAT(watch.finish().errors, HasSubstr("another program has changed the file meanwhile"));
}

TEST_F(WatchCommand, DirectoriesComeAndGo) {
  std::filesystem::create_directory(path("inc"));
  std::filesystem::create_directories(path("old"));
  std::filesystem::create_directories(path("new"));
  put("inc/a.h", "#define A 0\n");
  put("old/b.c", "int b;\n");
  put("new/b.c", "int c;\n");
  std::filesystem::create_symlink("old", path("now"));
  put("a.c", "#include \"inc/a.h\"\nint main(void) { return A; }\n");
  makeProgramProject({"a.c", "now/b.c"});
  e2e::RunningProgram watch(start({"watch"}));
  expectBuilds(watch, 1);
  pause();
  std::filesystem::remove_all(path("inc"));
  expectBuilds(watch, 2);
  pause();
  std::filesystem::create_directory(path("inc"));
  pause();
  put("inc/a.h", "#define A 0\n");
  expectBuilds(watch, 3);
  pause();
  std::filesystem::create_symlink("new", path("then"));
  touch("new/b.c");
  std::filesystem::rename(path("then"), path("now"));
  expectBuilds(watch, 4);
}

TEST_F(WatchCommand, EndsWhenItsReaderGoes) {
  makeToolProject({"a.txt"}, "true");
  auto command = start({"watch"});
  std::string line;
  for (const std::string& word : command.command) line += "'" + word + "' ";
  command.command = {"/bin/bash", "-c", line + "| head -1; echo ${PIPESTATUS[0]}"};
  const Outcome outcome = e2e::RunningProgram(command).finish();
  EXPECT_THAT(outcome.output, testing::EndsWith("\n141\n"));
}

TEST_F(WatchCommand, AProgramHearsAtOnceThatItWaits) {
  makeToolProject({"a.txt"}, "true");
  e2e::RunningProgram watch(start({"--json", "watch"}));
  EXPECT_TRUE(watch.waitForOutput("\"Watching 1 file of "));
}

TEST_F(WatchCommand, WhatCanNotBeBegunEndsAtOnce) {
  makeToolProject({"a.txt"}, "true");
  put("junk.nqp", "junk");
  EXPECT_THAT(refused({"-p", "none.nqp", "watch"}), HasSubstr("There is no project file"));
  EXPECT_THAT(refused({"-p", "junk.nqp", "watch"}), HasSubstr("is not a project file"));
  EXPECT_THAT(refused({"-p", "p.nqp", "-c", "Defualt", "watch"}), HasSubstr("Did you mean Default?"));
}

}  // namespace
}  // namespace forgeyard::console
