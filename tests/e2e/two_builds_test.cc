// Two hosts of one user at once: one tool at a time, whatever happens to either.
#include <signal.h>

#include <memory>
#include <sstream>

#include "tests/e2e/sandbox.h"

namespace forgeyard::e2e {
namespace {

class TwoBuilds : public Sandbox {
 protected:
  // A project in a directory of its own, below the sandbox.
  void makeProject(const std::string& name, const Lines& sources, const std::string& command) {
    setDirectory(name);
    makeToolProject(sources, scriptedTool() + " " + command);
  }
  Start buildOf(const std::string& name) {
    setDirectory(name);
    return start({"build"});
  }
  // Holds the turn until the file `go` appears in its directory.
  void makeHolder() {
    makeProject("holder", {"1.in"}, "pid running wait go touch \"$(OutDir)$(FileName).out\"");
  }
  void makeOther() { makeProject("other", {"1.in"}, "touch \"$(OutDir)$(FileName).out\""); }

  // The build of `other` as far as it comes: it queues for its turn, which shows in what it has open.
  std::unique_ptr<RunningProgram> startOther() {
    auto other = std::make_unique<RunningProgram>(buildOf("other"));
    EXPECT_TRUE(eventually([&] { return hasOpen(other->id(), "ExcludeMultiBuild.mutex"); }));
    return other;
  }
  void expectOtherDone(RunningProgram& other) {
    const Outcome outcome = other.finish();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output << outcome.errors;
    setDirectory("other");
    EXPECT_TRUE(exists("out/1.out"));
  }
};

TEST_F(TwoBuilds, ToolsOfBothNeverRunAtTheSameTime) {
  const std::string log = path("log");
  const Lines sources{"1.in", "2.in", "3.in", "4.in", "5.in", "6.in", "7.in", "8.in"};
  for (const std::string name : {"left", "right"}) {
    makeProject(name, sources,
                "log " + log + " begin log " + log + " end touch \"$(OutDir)$(FileName).out\"");
  }
  RunningProgram left(buildOf("left"));
  RunningProgram right(buildOf("right"));
  EXPECT_EQ(left.finish().exitCode, 0);
  EXPECT_EQ(right.finish().exitCode, 0);
  std::string expected;
  for (std::size_t i = 0; i < 2 * sources.size(); ++i) expected += "begin\nend\n";
  EXPECT_EQ(contentOf(log), expected);
}

TEST_F(TwoBuilds, SecondGoesOnWhenTheFirstIsDone) {
  makeHolder();
  makeOther();
  RunningProgram holder(buildOf("holder"));
  waitForFile("running");
  const auto other = startOther();
  EXPECT_FALSE(exists("out/1.out"));
  setDirectory("holder");
  put("go", "");
  EXPECT_EQ(holder.finish().exitCode, 0);
  expectOtherDone(*other);
}

TEST_F(TwoBuilds, SecondGoesOnWhenTheFirstIsKilled) {
  makeHolder();
  makeOther();
  RunningProgram holder(buildOf("holder"));
  waitForFile("running");
  const auto other = startOther();
  holder.signal(SIGKILL);
  expectOtherDone(*other);
  EXPECT_EQ(holder.finish().exitCode, 128 + SIGKILL);
  EXPECT_TRUE(becomesQuiet());
}

TEST_F(TwoBuilds, SecondGoesOnWhenTheSpawnerOfTheFirstIsKilled) {
  makeHolder();
  makeOther();
  RunningProgram holder(buildOf("holder"));
  waitForFile("running");
  pid_t tool = 0;
  pid_t spawner = 0;
  std::istringstream(content("running")) >> tool >> spawner;
  const auto other = startOther();
  ASSERT_EQ(::kill(spawner, SIGKILL), 0);
  expectOtherDone(*other);
  const Outcome outcome = holder.finish();
  EXPECT_EQ(outcome.exitCode, 1) << outcome.output;
  EXPECT_EQ(count(outcome, "Component \"tool\" result: ERROR"), 1) << outcome.output;
  EXPECT_TRUE(becomesQuiet());
}

TEST_F(TwoBuilds, StopReachesBoth) {
  makeHolder();
  makeOther();
  RunningProgram holder(buildOf("holder"));
  waitForFile("running");
  const auto other = startOther();
  must({"stop"});
  EXPECT_EQ(holder.finish().exitCode, 130);
  const Outcome waiting = other->finish();
  EXPECT_EQ(waiting.exitCode, 130);
  // It never had its turn, so there is no result of a component to tell.
  EXPECT_EQ(count(waiting, "Final result: STOPPED"), 1) << waiting.output;
  EXPECT_EQ(count(waiting, "Component \"tool\" result: STOPPED"), 0) << waiting.output;
}

TEST_F(TwoBuilds, SameProjectTwiceIsRefusedWithTheHolder) {
  makeHolder();
  RunningProgram holder(buildOf("holder"));
  waitForFile("running");
  const Outcome second = forgeyard({"build"});
  EXPECT_EQ(second.exitCode, 2);
  EXPECT_THAT(second.errors, testing::HasSubstr("p.nqp is open in process " + std::to_string(holder.id())));
  put("go", "");
  EXPECT_EQ(holder.finish().exitCode, 0);
}

}  // namespace
}  // namespace forgeyard::e2e
