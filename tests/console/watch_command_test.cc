// watch: one build for each change, none without.

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/console/console_sandbox.h"

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
  EXPECT_THAT(refused({"-p", "none.nqp", "watch"}), HasSubstr("There is no project file"));
}

}  // namespace
}  // namespace forgeyard::console
