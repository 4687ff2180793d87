#include "adapters/assembler/assembler_command.h"

#include <gtest/gtest.h>

#include "tests/adapters/scratch_tree.h"

namespace forgeyard {
namespace {

class AssemblerCommandTest : public testing::Test {
 protected:
  AssemblerCommand read(std::string_view command) {
    UserRegistry registry{Registry()};
    HostSpelling spelling(registry);
    return readAssemblerCommand(tree_.words(command), spelling);
  }
  std::string arguments(std::string_view command) {
    const AssemblerCommand read = this->read(command);
    return read.error.empty() ? joined(assemblerArguments(read)) : "error: " + read.error;
  }

  ScratchTree tree_;
};

TEST_F(AssemblerCommandTest, TurnsSwitchesIntoTheAssemblersOptions) {
  tree_.makeDirectory("in c");
  const struct {
    const char* name;
    const char* given;
    const char* expected;
  } cases[] = {
      {"defaults", R"(as /g /l /w ~\a.s,~\a.obj)", "as -o %/a.obj %/a.s"},
      {"symbols", R"(as /eA=1 /eB=A+2 a.s,a.obj)", "as --defsym A=1 --defsym B=A+2 -o a.obj a.s"},
      {"directories", R"(as /j~\inc /jinc a.s,a.obj)", "as -I %/inc -I inc -o a.obj a.s"},
      {"directory with a blank", R"(as /j~\in c a.s,a.obj)", "as -I %/in c -o a.obj a.s"},
      {"options", R"(as /o-KPIC /omips2 /o-I~\inc a.s,a.obj)", "as -KPIC -mips2 -I%/inc -o a.obj a.s"},
      {"options of the registry", "as -KPIC -mips2 /l a.s,a.obj", "as -KPIC -mips2 -o a.obj a.s"},
      {"warnings and debug information", "as /q /z a.s,a.obj", "as -W -g -o a.obj a.s"},
      {"source-level debug information", "as /l /zd a.s,a.obj", "as -g -o a.obj a.s"},
      {"taken without a counterpart", "as /k /l /w /x a.s,a.obj", "as -o a.obj a.s"},
      {"listing", R"(as /l a.s,a.obj,,~\a.lst)", "as -achls=%/a.lst -o a.obj a.s"},
      {"listing with everything", "as /c /m a.s,a.obj,a.sym,a.lst", "as -ahlms=a.lst -o a.obj a.s"},
      {"blanks in file names", R"(as /l ~\My Files\a b.s,~\My Files\a b.obj)",
       "as -o %/My Files/a b.obj %/My Files/a b.s"},
      {"blanks around commas", "as a.s, a.obj", "as -o a.obj a.s"},
  };
  for (const auto& [name, given, expected] : cases) EXPECT_EQ(arguments(given), tree_.in(expected)) << name;
}

TEST_F(AssemblerCommandTest, TellsWhatElseIsToBeDone) {
  const AssemblerCommand command = read(R"(as /g a.s,a.obj,~\a.sym,)");
  EXPECT_TRUE(command.keepLocals);
  EXPECT_EQ(command.symbols, tree_ / "a.sym");
  EXPECT_EQ(command.listing, "");
  EXPECT_FALSE(read("as a.s,a.obj").keepLocals);
}

TEST_F(AssemblerCommandTest, RefusesWhatItDoesNotKnow) {
  const struct {
    const char* given;
    const char* error;
  } cases[] = {
      {"as /y a.s,a.obj", "unknown switch \"/y\""},
      {"as /gg a.s,a.obj", "unknown switch \"/gg\""},
      {"as /G a.s,a.obj", "unknown switch \"/G\""},
      {"as /", "unknown switch \"/\""},
      {"as /e a.s,a.obj", "/e: a value is missing (/eNAME=VALUE, /jDIRECTORY, /oOPTION)"},
      {"as /eA a.s,a.obj", "/eA: a value is missing (/eNAME=VALUE, /jDIRECTORY, /oOPTION)"},
      {"as /o a.s,a.obj", "/o: a value is missing (/eNAME=VALUE, /jDIRECTORY, /oOPTION)"},
      {"as /l", "a file is missing: SOURCE,OBJECT[,SYMBOLS[,LISTING]] is the form"},
      {"as /l a.s", "a file is missing: SOURCE,OBJECT[,SYMBOLS[,LISTING]] is the form"},
      {"as ,a.obj", "a file is missing: SOURCE,OBJECT[,SYMBOLS[,LISTING]] is the form"},
      {"as a,s,a.obj,a.sym,a.lst",
       "too many files: SOURCE,OBJECT[,SYMBOLS[,LISTING]] is the form, and no name may have a comma in it"},
  };
  for (const auto& [given, error] : cases) EXPECT_EQ(read(given).error, error) << given;
}

}  // namespace
}  // namespace forgeyard
