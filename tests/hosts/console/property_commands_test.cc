// set and get.

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class PropertyCommands : public ConsoleSandbox {
 protected:
  void SetUp() override { makeProject(); }
};

TEST_F(PropertyCommands, GetListsEveryPropertyAndSetTakesItBack) {
  for (const std::string component : {"src", "cc", "link"}) {
    const Lines lines = must({"get", component}).lines();
    EXPECT_GE(lines.size(), 3U) << component;
    EXPECT_EQ(lines.front(), "Name=" + component);
    for (const std::string& line : lines) {
      const std::string name = line.substr(0, line.find('='));
      EXPECT_EQ(shown({"get", component, name}), line.substr(name.size() + 1) + "\n") << name;
      must({"set", component, line});
    }
    EXPECT_EQ(must({"get", component}).lines(), lines);
  }
}

TEST_F(PropertyCommands, SettingsBelongToOneConfigurationOrToAll) {
  must({"set", "cc", "Options=-a"});
  must({"set", "cc", "-c", "Small", "Options=-b"});
  EXPECT_EQ(shown({"get", "cc", "Options", "--all-configs"}), "Default: -a\nSmall: -b\n");
  must({"set", "cc", "--all-configs", "Options=-c", "WarningLevel=2"});
  EXPECT_EQ(shown({"get", "cc", "Options", "--all-configs"}), "Default: -c\nSmall: -c\n");
  EXPECT_EQ(shown({"get", "cc", "WarningLevel", "-c", "Small"}), "2\n");
  must({"set", "src", "-c", "Small", "Enabled=0"});
  EXPECT_EQ(shown({"get", "src", "Enabled", "--all-configs"}), "Default: 1\nSmall: 0\n");
}

TEST_F(PropertyCommands, NamesAndFlagsAreTakenInAnyCase) {
  const struct {
    const char* typed;
    const char* stored;
  } table[] = {{"debuginfo=1", "1"},   {"DEBUGINFO=no", "0"}, {"DebugInfo=Yes", "1"},
               {"DebugInfo=off", "0"}, {"DebugInfo=on", "1"}, {"DebugInfo=FALSE", "0"},
               {"DebugInfo=true", "1"}};
  for (const auto& row : table) {
    must({"set", "cc", row.typed});
    EXPECT_EQ(shown({"get", "cc", "DebugInfo"}), std::string(row.stored) + "\n") << row.typed;
  }
  must({"set", "cc", "Options=on"});
  EXPECT_EQ(shown({"get", "cc", "Options"}), "on\n") << "a text is no flag";
}

TEST_F(PropertyCommands, SetChangesWhatFollowsFromAProperty) {
  must({"component", "add", "asm", "asm"});
  const std::string mode1 = ".c;.i;.ii;.m;.cc;.cxx;.cpp;.C";
  const struct {
    Lines assignments;
    std::string component;
    std::string input;
    std::string output;
  } table[] = {
      {{"TranslateMode=1"}, "cc", mode1, ".s"},
      {{"TranslateMode=0"}, "cc", mode1 + ";.s;.S", ".obj"},
      {{"Output=.asm", "TranslateMode=1"}, "cc", mode1, ".asm"},
      {{"TranslateMode=1", "Input=.c"}, "cc", ".c", ".s"},
      {{"CreateListingFile=yes"}, "asm", "", ".obj;.lst"},
      {{"CreateSymbolFile=yes"}, "asm", "", ".obj;.sym;.lst"},
  };
  for (const auto& row : table) {
    Lines line{"set", row.component};
    line.insert(line.end(), row.assignments.begin(), row.assignments.end());
    must(line);
    EXPECT_EQ(shown({"get", row.component, "Input"}), row.input + "\n") << row.assignments.front();
    EXPECT_EQ(shown({"get", row.component, "Output"}), row.output + "\n") << row.assignments.front();
  }
}

TEST_F(PropertyCommands, FoldersHaveNameAndExtensions) {
  must({"set", "src", "Name=sources", "Extension=c;cc"});
  EXPECT_EQ(shown({"get", "sources"}), "Name=sources\nExtension=c;cc\nEnabled=1\n");
  EXPECT_THAT(shown({"component", "list"}), HasSubstr("sources -> cc\n"));
}

TEST_F(PropertyCommands, WrongUseChangesNothing) {
  const Refusal table[] = {
      {{"set", "ccc", "Options=x"}, "There is no component ccc. Did you mean cc?"},
      {{"set", "cc", "Optoins=x"}, "cc (cc) has no property Optoins. Did you mean Options?"},
      {{"set", "cc", "Banana=x"}, "\"forgeyard get cc\" shows what there is"},
      {{"set", "src", "Files=x"}, "The properties: Name, Extension and Enabled."},
      {{"set", "cc", "Options=kept?", "OptimisationLevel=high"},
       "\"high\" is no value for OptimisationLevel"},
      {{"set", "cc", "OptimisationLevel=-1"}, "takes a number"},
      {{"set", "cc", "OptimisationLevel=99999999999"}, "takes a number"},
      {{"set", "cc", "DebugInfo="}, "takes a number"},
      {{"set", "cc", "WarningLevel=yes"}, "\"yes\" is no value for WarningLevel"},
      {{"set", "cc", "Clone=x"}, "no property Clone"},
      {{"set", "cc", "Name=link"}, "There is a component link already"},
      {{"set", "cc", "Name="}, "needs a name"},
      {{"set", "cc", "-c", "Big", "Options=x"}, "There is no configuration Big."},
      {{"get", "cc", "Optoins"}, "Did you mean Options?"},
      {{"get", "nobody"}, "There is no component nobody."},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
  EXPECT_EQ(shown({"get", "cc", "Options"}), "\n");
}

TEST_F(PropertyCommands, PathsInSettingsStayAsTyped) {
  for (const std::string value :
       {"inc;../common;/usr/include", "inc;..\\common;\\usr\\include", "C:\\My Dir;x"}) {
    must({"set", "cc", "IncludePath=" + value});
    EXPECT_EQ(shown({"get", "cc", "IncludePath"}), value + "\n");
  }
}

}  // namespace
}  // namespace forgeyard::console
