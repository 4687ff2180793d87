// What is different on a terminal: questions are asked, lines show at once, Ctrl-C is typed.

#include "tests/console/console_sandbox.h"
#include "tests/console/terminal_program.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class Terminal : public ConsoleSandbox {};

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
  TerminalProgram build(start({"build"}));
  ASSERT_TRUE(build.waitFor("\nfirst\n")) << build.shown();
  put("go", "");
  ASSERT_TRUE(build.waitFor("\nsecond\n"));
  waitForFile("running");
  build.type("\x03");
  EXPECT_EQ(build.finish(), 130);
  EXPECT_THAT(build.shown(), HasSubstr("Stopping."));
  EXPECT_THAT(build.shown(), HasSubstr("Final result: STOPPED\n"));
  EXPECT_TRUE(becomesQuiet());
}

}  // namespace
}  // namespace forgeyard::console
