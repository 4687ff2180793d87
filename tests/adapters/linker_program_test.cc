#include "platform/threads/named_event.h"
#include "tests/adapters/program_test.h"

namespace forgeyard {
namespace {

const std::string CC = R"(gnu-cc mipsel-linux-gnu-gcc -mno-abicalls -fno-pic -mgpopt -G8 -c )";

// A free-standing program whose exit code is 42, built by the three command-line forms.
class LinkerProgramTest : public ProgramTest {
 protected:
  LinkerProgramTest() {
    tree_.put("start.s",
              "  .globl __start\n  .ent __start\n__start:\n  lui $gp, %hi(_gp)\n  addiu $gp, %lo(_gp)\n"
              "  jal main\n  nop\n  move $4, $2\n  li $2, 4001\n  syscall\n  .end __start\n");
    tree_.put("main.c",
              "extern int util(int);\nint zeros[16];\nint small = 1;\n"
              "int main(void) { return util(40) + zeros[3] + small; }\n");
    tree_.put("util.c", "int one = 1;\nint util(int a) { return a + one; }\n");
    tree_.put("game.lk", "ENTRY(__start)\nINPUT(obj\\start.obj obj\\MAIN.obj)\nINPUT(util.obj)\n");
    tree_.put("rom.lk",
              "ENTRY(__start)\nINPUT(obj\\start.obj obj\\main.obj obj\\util.obj)\n"
              "SECTIONS {\n  . = 0x80010000;\n"
              "  .text : { obj\\start.obj(.text) *(.text*) }\n  .data : { *(.data*) }\n"
              "  .sdata : { *(.sdata*) }\n  .sbss : { *(.sbss*) *(.scommon) }\n"
              "  .bss : { *(.bss*) *(COMMON) }\n}\n");
    for (const char* directory : {"obj", "out"}) tree_.makeDirectory(directory);
  }
  void compile() {
    ASSERT_EQ(run(CC + R"(~\main.c -o~\obj\main.obj )"), (Result{0, ""}));
    ASSERT_EQ(run(CC + R"(~\util.c -o~\obj\util.obj )"), (Result{0, ""}));
    ASSERT_EQ(run(R"(gnu-as mipsel-linux-gnu-as /g /l /w ~\start.s,~\obj\start.obj)"), (Result{0, ""}));
  }
  int emulate(const std::string& file) { return runTool({"qemu-mipsel", tree_ / file}).exitCode; }
  std::string outputs() { return joined(tree_.names("out")); }
};

TEST_F(LinkerProgramTest, LinksAProgramThatRuns) {
  compile();
  EXPECT_EQ(run(R"(TRAMLINK /c /s /l~\obj @~\game.lk,~\out\game.cpe)"), (Result{0, ""}));
  EXPECT_EQ(emulate("out/game.cpe"), 42);
  EXPECT_EQ(outputs(), "game.cpe");
  EXPECT_EQ(joined(tree_.names("tmp")), "");
}

TEST_F(LinkerProgramTest, MakesSymbolsMapAndRelocations) {
  compile();
  const std::string command =
      R"(TRAMLINK /z /c /m /wm /rmips=~\out\game.rel /eEXTRA=0x1234 /l~\obj /s @~\game.lk,~\out\game.cpe,~\out\game.sym,~\out\game.map)";
  EXPECT_EQ(run(command), (Result{0, ""}));
  EXPECT_EQ(emulate("out/game.cpe"), 42);
  EXPECT_NE(tree_.content("out/game.sym").find("00001234 A EXTRA\n"), std::string::npos);
  EXPECT_NE(tree_.content("out/game.rel").find("R_MIPS_26"), std::string::npos);
  const std::string map = tree_.content("out/game.map");
  EXPECT_NE(map.find(tree_ / "game.lk"), std::string::npos) << "the script as the user knows it";
  EXPECT_NE(map.find("Cross Reference Table"), std::string::npos);
  ASSERT_EQ(run(command), (Result{0, ""}));
  EXPECT_TRUE(tree_.content("out/game.map") == map) << "nothing in it changes from run to run";
}

TEST_F(LinkerProgramTest, BinaryAndSRecordsHoldTheSameBytes) {
  compile();
  for (const std::string zero : {"", "/z "}) {
    EXPECT_EQ(run("TRAMLINK /gp0x80010800 " + zero + R"(/p @~\rom.lk,~\out\rom.bin)"), (Result{0, ""}));
    EXPECT_EQ(run("TRAMLINK /gp0x80010800 " + zero + R"(/ps @~\rom.lk,~\out\rom.sre)"), (Result{0, ""}));
    ASSERT_EQ(runTool({"mipsel-linux-gnu-objcopy", "-I", "srec", "-O", "binary", tree_ / "out/rom.sre",
                       tree_ / "out/back.bin"}),
              (Result{0, ""}));
    const std::string binary = tree_.content("out/rom.bin");
    EXPECT_EQ(tree_.content("out/back.bin"), binary);
    EXPECT_GT(binary.size(), 100U);
    EXPECT_LT(binary.size(), 1000U) << "no headers, no gaps";
    if (zero.empty()) continue;
    EXPECT_EQ(binary.substr(binary.size() - 64), std::string(64, '\0')) << "the zeros of bss";
  }
  const std::string records = tree_.content("out/rom.sre");
  EXPECT_TRUE(records.starts_with("S00A0000726F6D2E737265")) << "rom.sre";
  EXPECT_NE(records.find("\nS31"), std::string::npos);
  EXPECT_NE(records.find("\nS70580010000"), std::string::npos);
}

TEST_F(LinkerProgramTest, TheGlobalPointerIsWhereTheCommandSays) {
  compile();
  EXPECT_EQ(run(R"(TRAMLINK /gp0x412340 /l~\obj @~\game.lk,~\out\game.cpe,~\out\game.sym)"), (Result{0, ""}));
  EXPECT_NE(tree_.content("out/game.sym").find("00412340 A _gp\n"), std::string::npos)
      << "in the linker's layout";
  EXPECT_EQ(emulate("out/game.cpe"), 42);
  EXPECT_EQ(run(R"(TRAMLINK /p /gp0x80010800 @~\rom.lk,~\out\rom.bin,~\out\rom.sym)"), (Result{0, ""}));
  EXPECT_NE(tree_.content("out/rom.sym").find("80010800 A _gp\n"), std::string::npos) << "in the script's";
  tree_.put("own.lk", tree_.content("rom.lk") + "_gp = 0x80010400;\n");
  EXPECT_EQ(
      run(R"(TRAMLINK /p /gp0x80010800 @~\own.lk,~\out\rom.bin)"),
      (Result{0, tree_.in(
                     "%/own.lk:11: warning: the script sets _gp itself, so /gp0x80010800 has no effect\n")}));
}

TEST_F(LinkerProgramTest, LinksWithTheCLibrary) {
  tree_.put("hello.c", "#include <stdio.h>\nint main(void) { return printf(\"hello\\n\"); }\n");
  ASSERT_EQ(run(R"(gnu-cc mipsel-linux-gnu-gcc -c ~\hello.c -o~\obj\hello.obj )"), (Result{0, ""}));
  tree_.put(
      "hello.lk",
      "INPUT(crt1.o crti.o crtbeginT.o obj\\hello.obj)\nGROUP(-lc -lgcc -lgcc_eh)\nINPUT(crtend.o crtn.o)\n");
  EXPECT_EQ(run(R"(TRAMLINK @~\hello.lk,~\out\hello.cpe)"), (Result{0, ""}));
  EXPECT_EQ(runTool({"qemu-mipsel", tree_ / "out/hello.cpe"}), (Result{6, "hello\n"}));
}

TEST_F(LinkerProgramTest, AFaultIsToldByTheUsersScriptAndLeavesNoOutput) {
  compile();
  for (const char* file : {"out/a.cpe", "out/a.sym", "out/a.map"}) tree_.put(file, "of an older build");
  const struct {
    const char* name;
    const char* script;
    const char* message;
  } cases[] = {
      {"missing object", "ENTRY(__start)\nINPUT(obj\\start.obj\n  obj\\none.obj)\n",
       "%/bad.lk:3: cannot find obj\\none.obj; looked in the working directory, %/lib, %, /"},
      {"missing library", "ENTRY(__start)\nINPUT(obj\\start.obj -lnone)\n",
       "%/bad.lk:2: cannot find -lnone; looked in "},
      {"unknown word", "ENTRY(__start)\nINPTU(a.obj)\n", "%/bad.lk:2: unknown word \"INPTU\"\n"},
      {"include of itself", "\nINCLUDE bad.lk\n", "%/bad.lk:2: bad.lk includes itself\n"},
      {"syntax", "ENTRY(__start)\nSECTIONS {\n .text : { *(.text }\n}\n", "%/bad.lk:3: syntax error\n"},
      {"unclosed", "ENTRY(__start)\nINPUT(obj\\start.obj\n",
       "%/bad.lk:2: syntax error: this \"(\" isn't closed\n"},
      {"nothing", "", "%/bad.lk:1: the script names nothing to link"},
      {"nothing but sections", "\nSECTIONS { .text : { *(.text) } }\n",
       "%/bad.lk:1: the script names nothing"},
      {"region",
       "INPUT(obj\\start.obj)\nMEMORY { rom : ORIGIN = 0, LENGTH = 4 }\nSECTIONS { .text : { *(.text) } > "
       "rom }\nmain = 0;\n",
       "%/bad.lk:2: region `rom' overflowed by "},
      {"input of itself", "INPUT(obj\\start.obj\n  bad.lk)\n", "%/bad.lk:2: bad.lk includes itself\n"},
      {"undefined symbol", "ENTRY(__start)\nINPUT(obj\\start.obj)\n", "undefined reference to `main'"},
  };
  for (const auto& [name, script, message] : cases) {
    tree_.put("bad.lk", script);
    const Result result = run(R"(TRAMLINK /s /l~\lib @~\bad.lk,~\out\a.cpe,~\out\a.sym,~\out\a.map)");
    EXPECT_EQ(result.exitCode, 1) << name;
    EXPECT_NE(result.output.find(tree_.in(message)), std::string::npos) << name << ": " << result.output;
    EXPECT_EQ(result.output.find(tree_ / "tmp"), std::string::npos) << name << " tells of a copy";
    EXPECT_EQ(outputs(), "") << name;
    EXPECT_EQ(joined(tree_.names("tmp")), "") << name;
  }
  EXPECT_EQ(run(R"(TRAMLINK @~\none.lk,~\out\a.cpe)").exitCode, 1);
}

TEST_F(LinkerProgramTest, RefusesWhatItDoesNotKnow) {
  EXPECT_EQ(run(R"(TRAMLINK /y @a.lk,a.cpe)"), (Result{2, "TRAMLINK: unknown switch \"/y\"\n"}));
  EXPECT_EQ(run("TRAMLINK").exitCode, 2);
  EXPECT_TRUE(run("TRAMLINK --help").output.starts_with("usage: TRAMLINK"));
}

TEST_F(LinkerProgramTest, TakesTheToolsThatItIsGiven) {
  compile();
  const ScopedVariable linker("FORGEYARD_LINKER", "no-such-");
  EXPECT_EQ(run(R"(TRAMLINK /l~\obj @~\game.lk,~\out\game.cpe)"),
            (Result{127, "TRAMLINK: cannot start \"no-such-ld\": not found on PATH\n"}));
  EXPECT_EQ(outputs(), "");
}

TEST_F(LinkerProgramTest, AStopLeavesNothingBehind) {
  putScript("slow-ld", "echo ready\nexec sleep 1000");
  tree_.put("out/game.cpe", "of an older build");
  const ScopedVariable linker("FORGEYARD_LINKER", tree_ / "slow-ld");
  const auto event = NamedEvent::create("StopEvent");
  Spawned link(tree_.in(R"(TRAMLINK @~\game.lk,~\out\game.cpe)"));
  ASSERT_EQ(link.line(), "ready");
  event->set();
  EXPECT_EQ(link.output(), "");
  EXPECT_EQ(link.wait(), 143);
  EXPECT_EQ(outputs(), "");
  EXPECT_EQ(joined(tree_.names("tmp")), "");
}

}  // namespace
}  // namespace forgeyard
