// A program without an operating system, of C and assembler sources and a linker script: samples/rom, with
// real tools.
#include "tests/e2e/sandbox.h"
#include "tests/support/places.h"

namespace forgeyard::e2e {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RomProgram : public Sandbox {
 protected:
  RomProgram() { makeProject(); }

  // The sample and its project in the directory of the sandbox.
  void makeProject() const {
    fs::copy(places::samples() + "/rom", directory(), fs::copy_options::recursive);
    Start making = start({});
    making.environment.push_back("FORGEYARD=" + making.command.front());
    making.command = {path("make-project.sh")};
    const Outcome made = RunningProgram(making).finish();
    EXPECT_EQ(made.exitCode, 0) << made.output << made.errors;
  }
  void replace(const std::string& file, const std::string& from, const std::string& to) const {
    std::string text = content(file);
    const std::size_t at = text.find(from);
    ASSERT_NE(at, text.npos) << from;
    put(file, text.replace(at, from.size(), to));
  }
  // The stems of the objects that the assembler was run for.
  static Lines assembled(const Outcome& outcome) {
    Lines stems;
    for (const std::string& line : outcome.lines()) {
      if (!line.starts_with("gnu-as ")) continue;
      const std::size_t object = line.find(".obj");
      const std::size_t name = line.rfind('\\', object) + 1;
      stems.push_back(line.substr(name, object - name));
    }
    return stems;
  }
  void expectRuns(const std::string& program, const Lines& arguments) const {
    const Outcome ran = run(program, arguments);
    EXPECT_EQ(ran.exitCode, 0) << program;
    EXPECT_THAT(ran.output, HasSubstr("self test passed\n"));
  }
};

TEST_F(RomProgram, ExecutableRunsAndASecondBuildRunsNoTool) {
  const Outcome build = must({"build"});
  EXPECT_THAT(compiled(build), ElementsAre("commands", "console", "crc32", "main", "selftest"));
  EXPECT_THAT(assembled(build), ElementsAre("start", "system"));
  EXPECT_EQ(toolRuns(build), 8) << build.output;
  expectRuns("qemu-mipsel", {path("out/executable/monitor.cpe")});
  for (const char* made :
       {"obj/executable/start.lst", "out/executable/monitor.sym", "out/executable/monitor.map"})
    EXPECT_TRUE(exists(made)) << made;
  EXPECT_EQ(toolRuns(must({"build"})), 0);
  std::filesystem::remove(path("obj/executable/start.lst"));
  EXPECT_THAT(assembled(must({"build"})), ElementsAre("start"));
}

TEST_F(RomProgram, BinaryAndSRecordsHoldTheSameBytesAndRunAsARom) {
  must({"-c", "binary", "build"});
  must({"-c", "srecord", "build"});
  ASSERT_EQ(run("mipsel-linux-gnu-objcopy",
                {"-I", "srec", "-O", "binary", path("out/srecord/monitor.sre"), path("converted")})
                .exitCode,
            0);
  EXPECT_GT(content("out/binary/monitor.bin").size(), 1000U);
  EXPECT_TRUE(content("converted") == content("out/binary/monitor.bin"));
  expectRuns(path("run-image.sh"), {path("out/binary/monitor.bin")});
}

TEST_F(RomProgram, WhatChangesIsMadeAgainAndNothingElse) {
  must({"build"});
  touch("start/system.s");
  const Outcome assembler = must({"build"});
  EXPECT_THAT(assembled(assembler), ElementsAre("system"));
  EXPECT_EQ(toolRuns(assembler), 2) << assembler.output;
  touch("monitor.lk");
  const Outcome script = must({"build"});
  EXPECT_EQ(toolRuns(script), 1) << script.output;
  EXPECT_EQ(count(script, "Component \"link\" result: OK"), 1);
  touch("inc/memory.h");
  const Outcome header = must({"build"});
  EXPECT_THAT(compiled(header), ElementsAre("commands", "main", "selftest"));
  EXPECT_THAT(assembled(header), IsEmpty());
  EXPECT_EQ(toolRuns(header), 4) << header.output;
  must({"set", "link", "EquateSymbols=LOADED=1;EXTRA=2"});
  EXPECT_EQ(toolRuns(must({"build"})), 1);
  EXPECT_THAT(content("out/executable/monitor.sym"), HasSubstr("00000002 A EXTRA\n"));
  must({"clean"});
  EXPECT_TRUE(fs::is_empty(path("out/executable")));
  EXPECT_TRUE(fs::is_empty(path("obj/executable")));
}

TEST_F(RomProgram, AFaultIsToldByItsPlaceAndTheBuildGoesOnWhenItIsMended) {
  must({"build"});
  const struct {
    const char* name;
    const char* file;
    const char* from;
    const char* to;
    const char* told;
  } cases[] = {
      {"missing object", "monitor.lk", "crc32.obj", "crc.obj",
       "/monitor.lk:6: cannot find crc.obj; looked in "},
      {"unknown word", "monitor.lk", "MEMORY", "MEMROY", "/monitor.lk:8: unknown word \"MEMROY\"\n"},
      {"include of itself", "monitor.lk", "ENTRY", "INCLUDE monitor.lk ENTRY",
       "/monitor.lk:4: monitor.lk includes itself\n"},
      {"too much for the ROM", "monitor.lk", "LENGTH = 64K", "LENGTH = 1K",
       "/monitor.lk:10: region `rom' overflowed by "},
      {"error in an assembler source", "start/system.s", "move ", "movve ", "/start/system.s:17: Error: "},
      {"missing function", "start/system.s", ".globl  system_read", "# ",
       "undefined reference to `system_read'\n"},
  };
  for (const auto& [name, file, from, to, told] : cases) {
    const std::string good = content(file);
    replace(file, from, to);
    const Outcome broken = forgeyard({"build"});
    EXPECT_EQ(broken.exitCode, 1) << name;
    EXPECT_THAT(broken.output, HasSubstr(told)) << name;
    EXPECT_EQ(count(broken, "Final result: ERRORS"), 1) << name;
    const bool linked = broken.output.find("TRAMLINK ") != std::string::npos;
    EXPECT_FALSE(exists(linked ? "out/executable/monitor.cpe" : "obj/executable/system.obj")) << name;
    put(file, good);
    must({"build"});
    expectRuns("qemu-mipsel", {path("out/executable/monitor.cpe")});
  }
}

TEST_F(RomProgram, ToolsThatAreMissingAreNamed) {
  must({"target", "add", "mips", "--assembler", "gnu-as no-such-as", "--linker", "no-such-"});
  EXPECT_THAT(forgeyard({"build"}).output,
              HasSubstr("\ngnu-as: cannot start \"no-such-as\": not found on PATH\n"));
  must({"target", "add", "mips", "--assembler", "gnu-as mipsel-linux-gnu-as"});
  EXPECT_THAT(forgeyard({"build"}).output,
              HasSubstr("\nTRAMLINK: cannot start \"no-such-ld\": not found on PATH\n"));
}

TEST_F(RomProgram, EverySettingReachesTheToolsAndIsTaken) {
  must({"set", "assemble", "ListConditionedOut=yes", "WriteNonGlobals=no", "EnableCommonMacros=yes",
        "ExpandMacros=yes", "DisableWarnings=yes", "MakeUndefinedXREF=yes", "WriteEquates=no",
        "LineNumsInDebugInfo=yes", "SLDInDebugInfo=yes", "IncludePath=inc;src", "EquateSymbols=A=1;B=A+1",
        "Options=-mips2;--no-pad-sections", "CreateSymbolFile=yes", "Output=.obj;.sym;.lst"});
  must({"set", "link", "AddOverlayRecognitionBytes=yes", "ZeroBSSSections=yes", "CaseSensitive=no",
        "ListExternals=yes", "MultipleDefsWarning=yes", "MultipleDeclsWarning=yes", "OutputName=sub\\prog",
        "RelocationFilePath=relocations.txt", "RelocationFileStyle=1", "GPRegisterLocation=0x10008000",
        "Options=/s;--no-warn-mismatch"});
  fs::create_directories(path("out/executable/sub"));
  const Outcome build = must({"build"});
  EXPECT_THAT(build.output,
              HasSubstr("gnu-as mipsel-linux-gnu-as /c /k /l /m /q /x /z /zd /eA=1 /eB=A+1 /jinc /jsrc "
                        "/o-mips2 /o--no-pad-sections "));
  EXPECT_THAT(build.output,
              HasSubstr("TRAMLINK /v /z /m /wl /wm /gp0x10008000 /rmips=relocations.txt /eLOADED=1 /l"));
  EXPECT_THAT(build.output, HasSubstr("/monitor.lk:34: warning: the script sets _gp itself"));
  expectRuns("qemu-mipsel", {path("out/executable/sub/prog.cpe")});
  for (const char* made : {"relocations.txt", "out/executable/sub/prog.sym", "out/executable/sub/prog.map",
                           "obj/executable/system.sym"})
    EXPECT_TRUE(exists(made)) << made;
  EXPECT_EQ(toolRuns(must({"build"})), 0);
}

TEST_F(RomProgram, NamesMayHaveBlanksAndLettersBeyondAscii) {
  setDirectory("Größe 1/мой rom");
  makeProject();
  for (const auto& [from, to] :
       {std::pair{"start", "the start"}, {"the start/system.s", "the start/ein größeres.s"}})
    fs::rename(path(from), path(to));
  replace("monitor.lk", "system.obj", "\"ein größeres.obj\"");
  must({"file", "remove", "start/start.s", "start/system.s"});
  must({"file", "add", "--folder", "start-up", "the start/start.s", "the start/ein größeres.s"});
  must({"config", "set", "OutputDirectory=die Ausgabe", "IntermediateDirectory=die Objekte"});
  must({"set", "link", "OutputName=ein Programm"});
  fs::create_directory(path("die Ausgabe"));
  must({"build"});
  expectRuns("qemu-mipsel", {path("die Ausgabe/ein Programm.cpe")});
  EXPECT_EQ(toolRuns(must({"build"})), 0);
}

}  // namespace
}  // namespace forgeyard::e2e
