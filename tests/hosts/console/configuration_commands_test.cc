// config add, list, use, remove and set.

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class ConfigurationCommands : public ConsoleSandbox {
 protected:
  void SetUp() override { makeProject(); }

  std::string lineOf(const std::string& name) const {
    for (const std::string& line : must({"config", "list"}).lines()) {
      if (line.substr(2).starts_with(name + " ")) return line;
    }
    return "";
  }
};

TEST_F(ConfigurationCommands, ListMarksTheActiveOneAndShowsWhatTheyHold) {
  must({"config", "set", "-c", "Small", "Target=native", "OutputDirectory=out dir",
        "IntermediateDirectory=/o/b\\j", "UpdateFileDependencies=no"});
  EXPECT_EQ(shown({"config", "list"}),
            "* Default  Target=  OutputDirectory=  IntermediateDirectory=  UpdateFileDependencies=1\n"
            "  Small  Target=native  OutputDirectory=out dir  IntermediateDirectory=\\o\\b\\j  "
            "UpdateFileDependencies=0\n");
}

TEST_F(ConfigurationCommands, NewOneCopiesItsBaseOrStartsAfresh) {
  must({"set", "cc", "Options=-x"});
  must({"config", "set", "Target=native", "OutputDirectory=out"});
  must({"config", "add", "Copy", "--from", "Default"});
  must({"config", "add", "Fresh"});
  EXPECT_EQ(shown({"get", "cc", "Options", "-c", "Copy"}), "-x\n");
  EXPECT_THAT(lineOf("Copy"), HasSubstr("Target=native  OutputDirectory=out "));
  EXPECT_EQ(shown({"get", "cc", "Options", "-c", "Fresh"}), "\n");
  EXPECT_THAT(lineOf("Fresh"), HasSubstr("Target=  OutputDirectory= "));
}

TEST_F(ConfigurationCommands, UseAndRemoveChooseTheActiveOne) {
  must({"config", "use", "Small"});
  EXPECT_TRUE(lineOf("Small").starts_with("* "));
  must({"config", "use", "Small"});
  must({"config", "remove", "Small"});
  EXPECT_TRUE(lineOf("Default").starts_with("* "));
  EXPECT_THAT(refused({"config", "remove", "Default"}), HasSubstr("only configuration"));
}

TEST_F(ConfigurationCommands, RenamedOneKeepsItsSettings) {
  must({"set", "cc", "Options=-x", "-c", "Small"});
  must({"config", "set", "Name=Tiny", "-c", "Small"});
  EXPECT_EQ(shown({"get", "cc", "Options", "--all-configs"}), "Default: \nTiny: -x\n");
}

TEST_F(ConfigurationCommands, WrongUseChangesNothing) {
  const Refusal table[] = {
      {{"config", "add", "Small"}, "A configuration already exists with that name: Small."},
      {{"config", "add", ""}, "needs a name"},
      {{"config", "add", "New", "--from", "Smal"}, "Did you mean Small?"},
      {{"config", "use", "Release"}, "The configurations: Default and Small."},
      {{"config", "remove", "smal"}, "Did you mean Small?"},
      {{"config", "set", "Name=Small"}, "already exists"},
      {{"config", "set", "Name="}, "needs a name"},
      {{"config", "set", "OutputDirectory=x", "Targt=native"}, "no property Targt. Did you mean Target?"},
      {{"config", "set", "UpdateFileDependencies=often"}, "takes a number"},
      {{"config", "set", "Project=x"}, "no property Project"},
      {{"config", "set", "-c", "None", "OutputDirectory=x"}, "There is no configuration None."},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
}

TEST_F(ConfigurationCommands, UnknownTargetIsSetWithAWarning) {
  must({"target", "add", "arm", "--compiler", "gnu-cc arm-gcc"});
  const Outcome outcome = must({"config", "set", "Target=amr"});
  EXPECT_THAT(outcome.errors, HasSubstr("no target amr yet. Did you mean arm?"));
  EXPECT_THAT(lineOf("Default"), HasSubstr("Target=amr "));
  EXPECT_EQ(must({"config", "set", "Target=arm"}).errors, "");
}

}  // namespace
}  // namespace forgeyard::console
