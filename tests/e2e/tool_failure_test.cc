// Tools that fail, and tools that misbehave.
#include "tests/e2e/sandbox.h"
#include "tests/support/places.h"

namespace forgeyard::e2e {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Ending {
  const char* name;
  const char* words;
  const char* told;
};

class ToolEnding : public Sandbox, public testing::WithParamInterface<Ending> {};

TEST_P(ToolEnding, IsToldAndFailsTheBuildButNotTheOtherFiles) {
  makeToolProject({"1.in", "2.in"}, scriptedTool() + " print started " + GetParam().words);
  const Outcome build = forgeyard({"build"});
  EXPECT_EQ(build.exitCode, 1);
  EXPECT_EQ(count(build, "started"), 2) << build.output;
  EXPECT_EQ(count(build, GetParam().told), 2) << build.output;
  EXPECT_EQ(count(build, "Component \"tool\" result: ERROR"), 1);
  EXPECT_EQ(count(build, "Final result: ERRORS"), 1);
}

INSTANTIATE_TEST_SUITE_P(Table, ToolEnding,
                         testing::Values(Ending{"ByItself", "exit 3", "Exit Code: 3 (0x3)."},
                                         Ending{"WithTheLargestCode", "exit 255", "Exit Code: 255 (0xff)."},
                                         Ending{"BySignal", "crash", "Exit Code: 137 (0x89)."}),
                         [](const auto& info) { return info.param.name; });

TEST_F(Sandbox, ToolThatDoesNotExistIsNamed) {
  makeToolProject({"1.in"}, "no-such-tool \"$(FileFullPath)\"");
  const Outcome build = forgeyard({"build"});
  EXPECT_EQ(build.exitCode, 1);
  EXPECT_THAT(build.output, HasSubstr("cannot start \"no-such-tool\": not found"));
  EXPECT_EQ(count(build, "Exit Code: 127 (0x7f)."), 1) << build.output;
}

TEST_F(Sandbox, CommandLongerThanOneArgumentMayBeIsRun) {
  Lines names;
  for (int i = 100; i < 900; ++i) names.push_back(std::to_string(i) + std::string(190, 'x') + ".in");
  makeToolProject(names, R"tool(ar rc "$(OutDir)all.a" "$(FileFullPathList)")tool");
  must({"set", "tool", "RunOnce=1", "Output=all.a", "FileSeparator=\" \""});
  EXPECT_EQ(count(must({"build"}), "Final result: OK"), 1);
  EXPECT_EQ(run("ar", {"t", path("out/all.a")}).lines(), names);
}

TEST_F(Sandbox, DaemonLeftBehindDoesNotHoldTheBuild) {
  makeToolProject(
      {"1.in", "2.in"},
      scriptedTool() +
          " daemon \"$(WorkDir)\\$(FileName).pid\" print done touch \"$(OutDir)$(FileName).out\"");
  const Outcome build = must({"build"});
  EXPECT_EQ(count(build, "done"), 2) << build.output;
  EXPECT_EQ(count(build, "Final result: OK"), 1);
  EXPECT_TRUE(becomesQuiet());
}

TEST_F(Sandbox, MissingSpawnerIsToldForTheFirstFileAndEndsTheComponent) {
  makeToolProject({"1.in", "2.in"}, "anything \"$(FileName)\"");
  // An installation that lacks it, and a registry that is made by that one.
  const std::string copy = path("installation/bin");
  std::filesystem::create_directories(path("installation"));
  std::filesystem::copy(places::programs(), copy);
  std::filesystem::remove(copy + "/TideSpawn.exe");
  std::filesystem::remove(start({}).environment[1].substr(std::string("FORGEYARD_REGISTRY=").size()));
  setPrograms(copy);
  const Outcome build = forgeyard({"build"});
  EXPECT_EQ(build.exitCode, 1);
  EXPECT_EQ(count(build, "Failed to invoke command line: anything \"1\""), 1) << build.output;
  EXPECT_EQ(count(build, "The executable may not be registered, or the path may be incorrect."), 1);
  EXPECT_THAT(build.output, Not(HasSubstr("anything \"2\"")));
  EXPECT_EQ(count(build, "Component \"tool\" result: ERROR"), 1);
  EXPECT_EQ(count(build, "Final result: ERRORS"), 1);
}

TEST_F(Sandbox, LastLineWithoutAnEndIsLostAndLinesKeepTheirOrder) {
  std::string words;
  std::string expected;
  for (int i = 1; i <= 200; ++i) {
    words += " print " + std::to_string(i);
    expected += std::to_string(i) + "\n";
  }
  makeToolProject({"1.in"}, scriptedTool() + words + " text rest touch \"$(OutDir)$(FileName).out\"");
  const Outcome build = must({"build"});
  EXPECT_THAT(build.output, HasSubstr(expected));
  EXPECT_THAT(build.output, Not(HasSubstr("\nrest")));
}

TEST_F(Sandbox, LineShowsWhenItEndsAndNotWhenTheToolEnds) {
  makeToolProject({"1.in"}, scriptedTool() + " print early wait go touch \"$(OutDir)$(FileName).out\"");
  RunningProgram build(start({"build"}));
  EXPECT_TRUE(build.waitForOutput("\nearly\n"));
  put("go", "");
  EXPECT_EQ(build.finish().exitCode, 0);
}

}  // namespace
}  // namespace forgeyard::e2e
