// What is different on a terminal: questions are asked, lines show at once, Ctrl-C is typed.

#include "tests/hosts/console/console_sandbox.h"
#include "tests/hosts/console/terminal_program.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class Terminal : public ConsoleSandbox {
 protected:
  // On a terminal of that kind, with NO_COLOR as given.
  e2e::Start on(const char* kind, Lines arguments, const std::string& noColor = "") const {
    e2e::Start start = this->start(std::move(arguments));
    start.environment.push_back(std::string("TERM=") + kind);
    start.environment.push_back("NO_COLOR=" + noColor);
    return start;
  }
};

TEST_F(Terminal, QuestionIsAskedAndTheAnswerCounts) {
  makeProject();
  const struct {
    const char* keys;
    bool removed;
  } table[] = {{"n\n", false}, {"\n", false}, {"x yes\n", false}, {"\x04", false}, {" Yes\n", true}};
  for (const auto& row : table) {
    TerminalProgram remove(start({"component", "remove", "link"}));
    ASSERT_TRUE(remove.waitFor("Delete Component: Are you sure you want to delete this component? [y/N] "));
    remove.type(row.keys);
    EXPECT_EQ(remove.finish(), 0) << remove.shown();
    EXPECT_EQ(shown({"component", "list"}).find("link") == std::string::npos, row.removed) << row.keys;
  }
}

TEST_F(Terminal, YesOptionAsksNothing) {
  makeProject();
  TerminalProgram remove(start({"component", "remove", "link", "-y"}));
  EXPECT_EQ(remove.finish(), 0);
  EXPECT_THAT(remove.shown(), HasSubstr("Yes (-y)."));
  TerminalProgram quiet(start({"component", "remove", "cc", "-y", "-q"}));
  EXPECT_EQ(quiet.finish(), 0);
  EXPECT_EQ(quiet.shown(), "");
}

TEST_F(Terminal, LinesShowAtOnceAndCtrlCStops) {
  makeToolProject({"a.in"}, scriptedTool() + " print first wait go print second pid running hang");
  TerminalProgram build(on("xterm", {"build"}));
  ASSERT_TRUE(build.waitFor("\nfirst\n")) << build.shown();
  put("go", "");
  ASSERT_TRUE(build.waitFor("\nsecond\n"));
  waitForFile("running");
  build.type("\x03");
  EXPECT_EQ(build.finish(), 130);
  EXPECT_THAT(build.shown(), HasSubstr("Stopping."));
  EXPECT_THAT(build.shown(), testing::EndsWith("Final result: STOPPED\n-----\n"));
  EXPECT_TRUE(becomesQuiet());
}

TEST_F(Terminal, ProgressLineTicksUnderTheLinesAndLeavesThemAsInAPipe) {
  makeToolProject({"1.in", "2.in"},
                  scriptedTool() + " print \"$(FileName).c:1:2: warning: w\" wait $(FileName).go");
  TerminalProgram build(on("xterm", {"rebuild"}));
  ASSERT_TRUE(build.waitFor("w\n[1/2] tool: 1.in  0:0")) << build.shown();
  ASSERT_TRUE(build.waitFor("[1/2] tool: 1.in  0:02")) << build.shown();
  put("1.go", "");
  ASSERT_TRUE(build.waitFor("\n[2/2] tool: 2.in  0:0")) << build.shown();
  put("2.go", "");
  EXPECT_EQ(build.finish(), 0);
  EXPECT_EQ(build.shown(), shown({"rebuild"}));
  TerminalProgram quiet(on("xterm", {"rebuild", "-q"}));
  EXPECT_EQ(quiet.finish(), 0);
  EXPECT_EQ(quiet.shown(), shown({"rebuild", "-q"}));
  EXPECT_THAT(quiet.written(), testing::Not(HasSubstr("[1/2]")));
}

TEST_F(Terminal, ProgressLineKeepsToTheWidthOfTheWindow) {
  makeToolProject({"\xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e\xe3\x81\xae\xe6\x96\x87\xe6\x9b\xb8.in"},
                  scriptedTool() + " wait go");
  TerminalProgram build(on("xterm", {"build"}), 31);
  ASSERT_TRUE(
      build.waitFor("[1/1] tool: \xe2\x80\xa6\xe8\xaa\x9e\xe3\x81\xae\xe6\x96\x87\xe6\x9b\xb8.in  0:0"));
  build.resize(12);
  ASSERT_TRUE(build.waitFor("\xe2\x80\xa6.in  0:0"));
  put("go", "");
  EXPECT_EQ(build.finish(), 0);
}

TEST_F(Terminal, ColoursAndProgressAreForTerminalsThatCanAndUsersWhoWant) {
  makeToolProject({"1.in"}, scriptedTool() + " print \"a.c:1:2: error: wrong\"");
  const struct {
    const char* terminal;
    const char* noColor;
    bool progress;
    bool colours;
  } table[] = {{"xterm", "", true, true},
               {"xterm", "1", true, false},
               {"dumb", "", false, false},
               {"", "", false, false}};
  for (const auto& row : table) {
    TerminalProgram build(on(row.terminal, {"rebuild"}, row.noColor));
    EXPECT_EQ(build.finish(), 0);
    const std::string& text = build.written();
    EXPECT_EQ(text.find("[1/1] tool: 1.in") != text.npos, row.progress) << row.terminal << row.noColor;
    EXPECT_EQ(text.find("\x1b[1ma.c:1:2\x1b[0m: \x1b[1;31merror:\x1b[0m wrong\r\n") != text.npos,
              row.colours);
    EXPECT_EQ(text.find('\x1b') != text.npos, row.progress);
  }
}

}  // namespace
}  // namespace forgeyard::console
