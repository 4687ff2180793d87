// A stop, whoever asks for it: in time, told in the output, with nothing left running.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <functional>

#include "tests/e2e/sandbox.h"

namespace forgeyard::e2e {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kLimit = std::chrono::seconds(2);
// Where a second of grace is part of it, the rest must do for a machine that is busy with other tests.
constexpr auto kForcedLimit = std::chrono::seconds(4);

class Stop : public Sandbox {
 protected:
  // A build whose second tool run does what the words say behind "placing the file `running`".
  void makeHangingProject(const std::string& words) const {
    makeToolProject({"1.in", "2.in", "3.in"},
                    scriptedTool() + " print \"begin $(FileName)\" touch \"$(OutDir)$(FileName).out\"");
    must({"component", "add", "cmdline", "second"});
    must({"connect", "tool", "second"});
    must({"set", "second", "Output=.two", "CommandOutDir=$(COutDir)",
          "Command=" + scriptedTool() + " print up pid running " + words + " print late"});
  }

  void expectStopped(const Outcome& outcome) const {
    EXPECT_EQ(outcome.exitCode, 130) << outcome.errors;
    EXPECT_EQ(count(outcome, "Component \"second\" result: STOPPED"), 1) << outcome.output;
    EXPECT_EQ(count(outcome, "Final result: STOPPED"), 1) << outcome.output;
    EXPECT_EQ(count(outcome, "up"), 1) << outcome.output;
    EXPECT_EQ(count(outcome, "late"), 0) << outcome.output;
    // Three runs of the first component ended; the stopped one shows no exit code.
    EXPECT_EQ(toolRuns(outcome), 3) << outcome.output;
    EXPECT_TRUE(becomesQuiet());
  }
};

TEST_F(Stop, CtrlCEndsALongCompileOfARealCompiler) {
  put("long.c", "#include \"endless.h\"\n");
  put("quick.c", "int quick;\n");
  makeProgramProject({"long.c", "quick.c"});
  // A header that never ends: the compiler waits for more of it.
  ASSERT_EQ(::mkfifo(path("endless.h").c_str(), 0600), 0);
  RunningProgram build(start({"build"}));
  int writer = -1;
  while (writer < 0) {
    writer = ::open(path("endless.h").c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    ::poll(nullptr, 0, 2);
  }
  const auto begin = Clock::now();
  build.interrupt();
  const Outcome outcome = build.finish();
  EXPECT_LT(Clock::now() - begin, kLimit);
  ::close(writer);
  EXPECT_EQ(outcome.exitCode, 130) << outcome.errors;
  EXPECT_EQ(count(outcome, "Component \"cc\" result: STOPPED"), 1) << outcome.output;
  EXPECT_EQ(count(outcome, "Final result: STOPPED"), 1);
  EXPECT_FALSE(exists("obj/quick.obj"));
  EXPECT_FALSE(exists("out/prog"));
  EXPECT_TRUE(becomesQuiet());
}

TEST_F(Stop, EveryWayToAskForItStopsTheBuild) {
  struct Way {
    const char* name;
    std::function<void(const RunningProgram&)> ask;
  };
  const Way ways[] = {
      {"Ctrl-C", [](const RunningProgram& build) { build.interrupt(); }},
      {"SIGINT to the host alone", [](const RunningProgram& build) { build.signal(SIGINT); }},
      {"SIGTERM", [](const RunningProgram& build) { build.signal(SIGTERM); }},
      {"forgeyard stop", [this](const RunningProgram&) { must({"stop"}); }},
  };
  makeHangingProject("hang");
  for (const Way& way : ways) {
    SCOPED_TRACE(way.name);
    std::filesystem::remove(path("running"));
    RunningProgram build(start({"rebuild"}));
    ASSERT_TRUE(build.waitForOutput("\nup\n"));
    const auto begin = Clock::now();
    way.ask(build);
    const Outcome outcome = build.finish();
    EXPECT_LT(Clock::now() - begin, kLimit);
    expectStopped(outcome);
  }
}

TEST_F(Stop, EndsAToolThatIgnoresThePoliteSignal) {
  makeHangingProject("deaf hang");
  RunningProgram build(start({"build"}));
  ASSERT_TRUE(build.waitForOutput("\nup\n"));
  const auto begin = Clock::now();
  build.interrupt();
  const Outcome outcome = build.finish();
  EXPECT_LT(Clock::now() - begin, kForcedLimit);
  expectStopped(outcome);
}

TEST_F(Stop, EndsADaemonThatTheToolHasLeft) {
  makeHangingProject("daemon daemon hang");
  RunningProgram build(start({"build"}));
  waitForFile("daemon");
  build.interrupt();
  expectStopped(build.finish());
}

TEST_F(Stop, AfterItTheNextBuildGoesOnWithWhatIsLeft) {
  makeHangingProject("wait go touch \"$(OutDir)$(FileName).two\"");
  RunningProgram build(start({"build"}));
  ASSERT_TRUE(build.waitForOutput("\nup\n"));
  build.interrupt();
  expectStopped(build.finish());
  put("go", "");
  const Outcome rest = must({"build"});
  EXPECT_EQ(toolRuns(rest), 3) << "the first component had nothing left to do\n" << rest.output;
  EXPECT_TRUE(exists("out/3.two"));
}

TEST_F(Stop, WithoutABuildSaysSo) {
  EXPECT_EQ(must({"stop"}).output, "No build of yours is running.\n");
}

TEST_F(Stop, KilledHostTakesItsToolsWithIt) {
  makeHangingProject("daemon daemon hang");
  RunningProgram build(start({"build"}));
  waitForFile("daemon");
  build.signal(SIGKILL);
  EXPECT_EQ(build.finish().exitCode, 128 + SIGKILL);
  EXPECT_TRUE(becomesQuiet());
}

}  // namespace
}  // namespace forgeyard::e2e
