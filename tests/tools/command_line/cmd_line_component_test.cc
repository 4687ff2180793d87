// The command-line component at work in a project.

#include "tests/support/build_fixture.h"
#include "tools/command_line/cmd_line.h"

namespace forgeyard::test {
namespace {

class CmdLineComponentTest : public BuildFixture {
 protected:
  CmdLineComponentTest() {
    // Prints its arguments and makes the files that follow "-o".
    tool_ = putTool("tool", R"(
printf '<%s>' "$@"; echo
while [ $# -gt 0 ]; do [ "$1" != -o ] || { shift; echo made > "$1"; }; shift; done
)");
    cmdLine_ = add<CCmdLine>(u"Step");
    folder_ = addFolder(u"Files");
    connect(folder_.get(), cmdLine_.get());
    check(stepSettings()->put_CommandOutDir(u"$(COutDir)"));
  }
  Ref<ICmdLineSettings> stepSettings() { return settings<ICmdLineSettings>(cmdLine_.get()); }
  void setCommand(const std::string& arguments) {
    check(stepSettings()->put_Command(BString::fromNarrow(tool_ + " " + arguments)));
  }
  std::int32_t buildDirty() { return valueOf(*stepSettings(), &ICmdLineSettings::get_BuildDirty); }

  std::string tool_;
  Ref<CCmdLine> cmdLine_;
  Ref<CFolder> folder_;
};

TEST_F(CmdLineComponentTest, RunsForEachFile) {
  addFile(*folder_, "a.txt");
  addFile(*folder_, "b.txt");
  check(stepSettings()->put_Output(u".out"));
  setCommand("$(File) -o $(OutDir)$(FileName).out");
  EXPECT_EQ(run(E_TASK_BUILD),
            (Lines{"Component \"Step\"", "", tool_ + " a.txt -o " + narrowPath("out/a.out"),
                   "<a.txt><-o><" + (directory_ / "out/a.out") + ">", "Exit Code: 0 (0x0).", "",
                   tool_ + " b.txt -o " + narrowPath("out/b.out"),
                   "<b.txt><-o><" + (directory_ / "out/b.out") + ">", "Exit Code: 0 (0x0).",
                   "Component \"Step\" result: OK", "-----"}));
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(buildDirty(), 0);
  EXPECT_EQ(run(E_TASK_BUILD), (Lines{"Component \"Step\"", "All outputs up to date.", "-----"}));
}

TEST_F(CmdLineComponentTest, RunsOnceForAllFilesJoinedByTheSeparator) {
  addFile(*folder_, "a.txt");
  addFile(*folder_, "b.txt");
  check(stepSettings()->put_RunOnce(1));
  check(stepSettings()->put_Output(u"one.out; two.out"));
  setCommand("$(FileFullPathList) $(OutFileFullPathList)");
  const std::string ins[] = {narrowPath("a.txt"), narrowPath("b.txt")};
  const std::string outs[] = {narrowPath("out/one.out"), narrowPath("out/two.out")};
  EXPECT_EQ(run(E_TASK_BUILD)[2], tool_ + " " + ins[0] + " " + ins[1] + " " + outs[0] + " " + outs[1]);
  check(stepSettings()->put_FileSeparator(u","));
  EXPECT_EQ(run(E_TASK_BUILD)[2], tool_ + " " + ins[0] + "," + ins[1] + " " + outs[0] + "," + outs[1]);
  EXPECT_EQ(outputsOf(static_cast<IComponent*>(cmdLine_.get())), (Lines{outs[0], outs[1]}));
}

TEST_F(CmdLineComponentTest, ACommandWithAListOfNothingHasNoOutputs) {
  check(stepSettings()->put_RunOnce(1));
  check(stepSettings()->put_Output(u"one.out"));
  setCommand("-o $(OutDir)one.out");
  run(E_TASK_FAKEBUILD);
  EXPECT_EQ(outputsOf(static_cast<IComponent*>(cmdLine_.get())), Lines{narrowPath("out/one.out")});
  setCommand("$(FileFullPathList) -o $(OutDir)one.out");
  run(E_TASK_FAKEBUILD);
  EXPECT_EQ(outputsOf(static_cast<IComponent*>(cmdLine_.get())), Lines{});
}

TEST_F(CmdLineComponentTest, RefusesABadCommandBeforeAnyToolRuns) {
  addFile(*folder_, "a.txt");
  setCommand("$(Nope)");
  EXPECT_EQ(run(E_TASK_BUILD),
            (Lines{"Component \"Step\"",
                   "ERROR: Undefined macro in command line: $(Nope). Use \"Project, Settings\" to correct.",
                   "Command Line: " + tool_ + " $(Nope)", "Component \"Step\" result: ERROR", "-----"}));
  EXPECT_EQ(result(), E_BTR_ERROR);
  EXPECT_EQ(buildDirty(), 1);
  check(stepSettings()->put_Command(u""));
  EXPECT_EQ(run(E_TASK_BUILD), (Lines{"Component \"Step\"",
                                      "ERROR: Command line is empty. Use \"Project, Settings\" to correct.",
                                      "Component \"Step\" result: ERROR", "-----"}));
}

TEST_F(CmdLineComponentTest, ABadCommandWithoutInputsIsNotReported) {
  setCommand("$(Nope)");
  EXPECT_EQ(run(E_TASK_BUILD),
            (Lines{"Component \"Step\"", "No inputs to build.", "All outputs up to date.", "-----"}));
  EXPECT_EQ(result(), E_BTR_COMPLETED);
}

}  // namespace
}  // namespace forgeyard::test
