// history.

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class HistoryCommand : public ConsoleSandbox {};

TEST_F(HistoryCommand, WalksFromTheObjectsOfTheStartDown) {
  const std::string all = shown({"history"});
  EXPECT_TRUE(all.starts_with("BuildTool, version 2\n  0  Class: CBuildTool\n")) << all;
  EXPECT_THAT(all, HasSubstr("\n  Project, version 6\n    0  Class: CProject\n"));
  EXPECT_THAT(all, HasSubstr("\n      SourceFile, version 0\n"));
  EXPECT_THAT(all, HasSubstr("\nAsmLO, version 1\n  0  Class: CAsmLO\n"));
}

TEST_F(HistoryCommand, ShowsWhatIsAskedFor) {
  for (const char* name : {"Connection", "connection", "KV.Connection"}) {
    EXPECT_EQ(
        shown({"history", name}),
        "Connection, version 0\n  0  Class: CConnection\n  0  FixDate: 3/7/98\n  0  FixedIn: 1,0,0,2\n");
  }
  EXPECT_THAT(
      shown({"history", "Project", "--key", "Beta Fix", "--from", "4"}),
      testing::StartsWith("Project, version 6\n  4  Beta Fix: Saves Project after adding it to SS\n  Conf"));
  EXPECT_THAT(shown({"history", "Project", "--to", "0"}), HasSubstr("FixedIn: 1,0,0,2\n  Configuration"));
}

TEST_F(HistoryCommand, RefusesWhatThereIsNot) {
  EXPECT_THAT(refused({"history", "Projct"}), HasSubstr("There is no class Projct. Did you mean Project?"));
  EXPECT_THAT(refused({"history", "Workspace"}), HasSubstr("not built yet"));
  EXPECT_THAT(refused({"history", "Cc"}), HasSubstr("The class Cc has no history."));
  EXPECT_THAT(refused({"history", "Project", "--key", "Beta Fx"}), HasSubstr("Did you mean Beta Fix?"));
  EXPECT_THAT(refused({"history", "--from", "-1"}), HasSubstr("is no version for --from"));
}

}  // namespace
}  // namespace forgeyard::console
