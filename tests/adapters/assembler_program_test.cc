#include "tests/adapters/program_test.h"

namespace forgeyard {
namespace {

class AssemblerProgramTest : public ProgramTest {
 protected:
  AssemblerProgramTest() {
    tree_.put("in c/macros.inc", ".macro twice\n  nop\n  nop\n.endm\n");
    tree_.put("My Files/a b.s",
              "  .include \"macros.inc\"\n  .text\n  .globl start\nstart:\n  li $2, VALUE\n  twice\n"
              "local:\n  .if 0\n  .word 0x12345678\n  .endif\n  jr $31\n");
    tree_.makeDirectory("out");
  }
  static constexpr const char* AS = R"(gnu-as mipsel-linux-gnu-as -KPIC )";
  static constexpr const char* kFiles =
      R"( /l /w /eVALUE=66 /j~\in c ~\My Files\a b.s,~\out\a b.obj,~\out\a b.sym,~\out\a b.lst)";
};

TEST_F(AssemblerProgramTest, MakesObjectSymbolsAndListing) {
  EXPECT_EQ(run(std::string(AS) + "/g" + kFiles), (Result{0, ""}));
  EXPECT_EQ(joined(tree_.names("out")), "a b.lst a b.obj a b.sym");
  const std::string symbols = tree_.content("out/a b.sym");
  EXPECT_NE(symbols.find(" T start\n"), std::string::npos) << symbols;
  EXPECT_NE(symbols.find(" t local\n"), std::string::npos) << symbols;
  const std::string listing = tree_.content("out/a b.lst");
  EXPECT_NE(listing.find("li $2, VALUE"), std::string::npos) << listing;
  EXPECT_EQ(listing.find("0x12345678"), std::string::npos) << "the condition doesn't hold";
}

TEST_F(AssemblerProgramTest, SwitchesReachTheObjectAndTheListing) {
  EXPECT_EQ(run(std::string(AS) + "/c /m" + kFiles), (Result{0, ""}));
  EXPECT_EQ(tree_.content("out/a b.sym").find("local"), std::string::npos) << "without /g";
  const std::string listing = tree_.content("out/a b.lst");
  EXPECT_NE(listing.find("0x12345678"), std::string::npos) << "/c";
  EXPECT_NE(listing.find(">  nop"), std::string::npos) << "/m: " << listing;
}

TEST_F(AssemblerProgramTest, EquatesStayWhereTheyAreWanted) {
  tree_.put("e.s",
            "  .globl GLOBAL\nGLOBAL = 1\nLOCAL = 2\nlabel:\n  li $2, LOCAL\n  jal outside\n  "
            "nop\n");
  const struct {
    const char* switches;
    const char* present;
    const char* absent;
  } cases[] = {
      {"/g /w", "GLOBAL LOCAL label", ""}, {"/g", "GLOBAL label", "LOCAL"}, {"/w", "GLOBAL", "LOCAL label"}};
  for (const auto& [switches, present, absent] : cases) {
    EXPECT_EQ(
        run("gnu-as mipsel-linux-gnu-as " + std::string(switches) + R"( ~\e.s,~\out\e.obj,~\out\e.sym)"),
        (Result{0, ""}));
    const std::string symbols = tree_.content("out/e.sym");
    for (const std::string& name : tree_.words(present)) {
      EXPECT_NE(symbols.find(" " + name + "\n"), std::string::npos) << switches << ": " << name;
    }
    for (const std::string& name : tree_.words(absent)) {
      EXPECT_EQ(symbols.find(" " + name + "\n"), std::string::npos) << switches << ": " << name;
    }
  }
  EXPECT_EQ(joined(tree_.names("tmp")), "");
}

TEST_F(AssemblerProgramTest, AFailureLeavesNoOutput) {
  for (const char* file : {"out/a.obj", "out/a.sym", "out/a.lst"}) tree_.put(file, "of an older build");
  tree_.put("bad.s", "  nonsense $1\n");
  for (const char* source : {"bad.s", "missing.s"}) {
    const Result result =
        run(std::string(AS) + "/l ~\\" + source + R"(,~\out\a.obj,~\out\a.sym,~\out\a.lst)");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.output.find(tree_ / source), std::string::npos) << result.output;
    EXPECT_EQ(joined(tree_.names("out")), "");
  }
}

TEST_F(AssemblerProgramTest, RefusesAnUnknownSwitch) {
  EXPECT_EQ(run("gnu-as mipsel-linux-gnu-as /l /y a.s,a.obj"),
            (Result{2, "gnu-as: unknown switch \"/y\"\n"}));
  EXPECT_EQ(run("gnu-as").exitCode, 2);
  EXPECT_EQ(run("gnu-as no-such-as a.s,a.obj"),
            (Result{127, "gnu-as: cannot start \"no-such-as\": not found on PATH\n"}));
  EXPECT_TRUE(run("gnu-as --help").output.starts_with("usage: gnu-as ASSEMBLER"));
}

}  // namespace
}  // namespace forgeyard
