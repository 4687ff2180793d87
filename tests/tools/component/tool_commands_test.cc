// The commands that compiler, assembler and linker make of their settings.

#include <gtest/gtest.h>

#include "tests/support/set_properties.h"
#include "tools/assembler/asm_command.h"
#include "tools/assembler/asm_settings.h"
#include "tools/compiler/cc_command.h"
#include "tools/compiler/cc_settings.h"
#include "tools/linker/linker_command.h"
#include "tools/linker/linker_settings.h"
#include "tools/settings/leading_number.h"

namespace forgeyard::test {
namespace {

struct CommandCase {
  const char* name;
  Properties properties;
  const char* command;
};

std::string compiler(const Properties& properties, bool dependencies = false) {
  const auto settings = make<CcSettings>();
  setProperties(*settings, properties);
  return compilerCommand(*settings, u"cctool", dependencies).narrow();
}

#define CC_TAIL "$(FileFullPath) -o$(OutDir)$(FileName).obj "

TEST(CompilerCommand, FollowsTheSettings) {
  const CommandCase cases[] = {
      {"defaults", {}, "cctool -c " CC_TAIL},
      {"to assembler source", {{u"TranslateMode", 1}}, "cctool -S $(FileFullPath) -o$(OutDir)$(FileName).s "},
      {"any other mode is to assembler source",
       {{u"TranslateMode", 5}},
       "cctool -S $(FileFullPath) -o$(OutDir)$(FileName).s "},
      {"debug", {{u"DebugInfo", 1}}, "cctool -c -g " CC_TAIL},
      {"a flag is any number but 0", {{u"DebugInfo", -1}}, "cctool -c -g " CC_TAIL},
      {"strict", {{u"AnsiCompliance", 1}}, "cctool -c -ansi " CC_TAIL},
      {"intermediates", {{u"SaveIntFiles", 1}}, "cctool -c -save-temps " CC_TAIL},
      {"all three flags",
       {{u"DebugInfo", 1}, {u"AnsiCompliance", 1}, {u"SaveIntFiles", 1}},
       "cctool -c -g -ansi -save-temps " CC_TAIL},
      {"standard libraries change nothing", {{u"NoStdLibs", 1}}, "cctool -c " CC_TAIL},
      {"include directories",
       {{u"IncludePath", u"inc;C:\\My Dir;\"D:\\Your Dir\""}},
       "cctool -c -Iinc -I\"C:\\My Dir\" -I\"D:\\Your Dir\" " CC_TAIL},
      {"level 0", {{u"OptimisationLevel", 0}}, "cctool -c " CC_TAIL},
      {"level 1", {{u"OptimisationLevel", 1}}, "cctool -c -O1 " CC_TAIL},
      {"level 2", {{u"OptimisationLevel", 2}}, "cctool -c -O2 " CC_TAIL},
      {"level 3", {{u"OptimisationLevel", 3}}, "cctool -c -O3 " CC_TAIL},
      {"level 7", {{u"OptimisationLevel", 7}}, "cctool -c " CC_TAIL},
      {"optimisations",
       {{u"SpecificOptimisations", u"inline; unroll-loops"}},
       "cctool -c -finline -funroll-loops " CC_TAIL},
      {"small data 8", {{u"SmallDataThreshold", u"8"}}, "cctool -c -mgpopt -G8 " CC_TAIL},
      {"small data as typed", {{u"SmallDataThreshold", u"+08x"}}, "cctool -c -mgpopt -G+08x " CC_TAIL},
      {"small data 0", {{u"SmallDataThreshold", u"0"}}, "cctool -c " CC_TAIL},
      {"no small data", {{u"SmallDataThreshold", u""}}, "cctool -c " CC_TAIL},
      {"small data that is no number", {{u"SmallDataThreshold", u"abc"}}, "cctool -c " CC_TAIL},
      {"definitions", {{u"DefineMacros", u"A=1;B"}}, "cctool -c -DA=1 -DB " CC_TAIL},
      {"undefinitions", {{u"UndefineMacros", u"A"}}, "cctool -c -UA " CC_TAIL},
      {"warnings 0", {{u"WarningLevel", 0}}, "cctool -c -w " CC_TAIL},
      {"warnings 1", {{u"WarningLevel", 1}}, "cctool -c " CC_TAIL},
      {"warnings 2", {{u"WarningLevel", 2}}, "cctool -c -Wall " CC_TAIL},
      {"warnings 3", {{u"WarningLevel", 3}}, "cctool -c -Wall " CC_TAIL},
      {"warnings 4", {{u"WarningLevel", 4}}, "cctool -c " CC_TAIL},
      {"single warnings",
       {{u"EnableSpecificWarnings", u"shadow"}, {u"DisableSpecificWarnings", u"unused;format"}},
       "cctool -c -Wshadow -Wno-unused -Wno-format " CC_TAIL},
      {"machine", {{u"TargetCPUOptions", u"ips2;soft-float"}}, "cctool -c -mips2 -msoft-float " CC_TAIL},
      {"preprocessor", {{u"PreprocessorOptions", u"-DX;-DY"}}, "cctool -c -Wp,-DX -Wp,-DY " CC_TAIL},
      {"assembler", {{u"AssemblerOptions", u"-G0"}}, "cctool -c -Wa,-G0 " CC_TAIL},
      {"options", {{u"Options", u"-pipe;--x=a b"}}, "cctool -c -pipe \"--x=a b\" " CC_TAIL},
      {"Input and Output play no part", {{u"Input", u".x"}, {u"Output", u".o"}}, "cctool -c " CC_TAIL},
      {"the order of all",
       {{u"DebugInfo", 1},
        {u"IncludePath", u"i"},
        {u"OptimisationLevel", 1},
        {u"SpecificOptimisations", u"f"},
        {u"SmallDataThreshold", u"4"},
        {u"DefineMacros", u"D"},
        {u"UndefineMacros", u"U"},
        {u"WarningLevel", 0},
        {u"EnableSpecificWarnings", u"e"},
        {u"DisableSpecificWarnings", u"d"},
        {u"TargetCPUOptions", u"m"},
        {u"PreprocessorOptions", u"p"},
        {u"AssemblerOptions", u"a"},
        {u"Options", u"o"}},
       "cctool -c -g -Ii -O1 -ff -mgpopt -G4 -DD -UU -w -We -Wno-d -mm -Wp,p -Wa,a o " CC_TAIL},
  };
  for (const auto& row : cases) EXPECT_EQ(compiler(row.properties), row.command) << row.name;
}

TEST(CompilerCommand, AsksForDependenciesBeforeTheFile) {
  EXPECT_EQ(compiler({}, true), "cctool -c -MD " CC_TAIL);
  EXPECT_EQ(compiler({{u"DebugInfo", 1},
                      {u"IncludePath", u"inc;C:\\My Dir"},
                      {u"OptimisationLevel", 2},
                      {u"SmallDataThreshold", u"8"},
                      {u"DefineMacros", u"A=1"},
                      {u"WarningLevel", 2}},
                     true),
            "cctool -c -g -Iinc -I\"C:\\My Dir\" -O2 -mgpopt -G8 -DA=1 -Wall -MD " CC_TAIL);
}

TEST(CompilerCommand, OpensWithTheTextOfTheRegistryAsItStands) {
  const auto settings = make<CcSettings>();
  EXPECT_EQ(compilerCommand(*settings, u"\"C:\\My Tools\\cc\"  -x; ", false).narrow(),
            "\"C:\\My Tools\\cc\"  -x;  -c " CC_TAIL);
}

TEST(LeadingNumber, ReadsADecimalNumberAtTheVeryStart) {
  const struct {
    std::u16string_view text;
    std::int32_t number;
  } cases[] = {
      {u"", 0},
      {u"0", 0},
      {u"8", 8},
      {u"12x", 12},
      {u"-8", -8},
      {u"+8", 8},
      {u"-", 0},
      {u"+-8", 0},
      {u" 8", 0},
      {u"abc", 0},
      {u"x8", 0},
      {u"0x10", 0},
      {u"007", 7},
      {u"-0", 0},
      {u"8.5", 8},
      {u"2147483647", 2147483647},
      {u"2147483648", 2147483647},
      {u"-2147483648", -2147483647 - 1},
      {u"4294967296", 2147483647},
      {u"-99999999999999999999999", -2147483647 - 1},
  };
  for (const auto& row : cases) EXPECT_EQ(leadingNumber(row.text), row.number) << BString(row.text).narrow();
}

std::string assembler(const Properties& properties) {
  const auto settings = make<AsmSettings>();
  setProperties(*settings, properties);
  return assemblerCommand(*settings, u"asmtool").narrow();
}

#define ASM_TAIL "$(FileFullPath),$(OutDir)$(FileName).obj"

TEST(AssemblerCommand, FollowsTheSettings) {
  const CommandCase cases[] = {
      {"defaults", {}, "asmtool /g /l /w " ASM_TAIL},
      {"all off", {{u"WriteNonGlobals", 0}, {u"WriteEquates", 0}}, "asmtool /l " ASM_TAIL},
      {"source-level debug alone",
       {{u"WriteNonGlobals", 0}, {u"WriteEquates", 0}, {u"SLDInDebugInfo", 1}},
       "asmtool /l /zd " ASM_TAIL},
      {"all switches, in an order of their own",
       {{u"ListConditionedOut", 1},
        {u"EnableCommonMacros", 1},
        {u"ExpandMacros", 1},
        {u"DisableWarnings", 1},
        {u"MakeUndefinedXREF", 1},
        {u"LineNumsInDebugInfo", 1},
        {u"SLDInDebugInfo", 1}},
       "asmtool /c /g /k /l /m /q /w /x /z /zd " ASM_TAIL},
      {"lists",
       {{u"IncludePath", u"inc;C:\\My Dir"}, {u"EquateSymbols", u"A=1;B=2"}, {u"Options", u"a;b"}},
       "asmtool /g /l /w /eA=1 /eB=2 /jinc /j\"C:\\My Dir\" /oa /ob " ASM_TAIL},
      {"listing", {{u"CreateListingFile", 1}}, "asmtool /g /l /w " ASM_TAIL ",,$(OutDir)$(FileName).lst"},
      {"symbols", {{u"CreateSymbolFile", 1}}, "asmtool /g /l /w " ASM_TAIL ",$(OutDir)$(FileName).sym"},
      {"symbols and listing",
       {{u"CreateSymbolFile", 1}, {u"CreateListingFile", 1}},
       "asmtool /g /l /w " ASM_TAIL ",$(OutDir)$(FileName).sym,$(OutDir)$(FileName).lst"},
  };
  for (const auto& row : cases) EXPECT_EQ(assembler(row.properties), row.command) << row.name;
}

std::string linker(const Properties& properties, const BString& script = u"C:\\p\\game.lk") {
  const auto settings = make<LinkerSettings>();
  setProperties(*settings, properties);
  if (getProperty(*settings, u"OutputName").get<BString>()->empty()) {
    setProperty(*settings, u"OutputName", BString(u"game"));
  }
  return linkerCommand(*settings, script).narrow();
}

#define LINK_HEAD "TRAMLINK /c /s @C:\\p\\game.lk,$(OutDir)"

TEST(LinkerCommand, FollowsTheSettings) {
  const CommandCase cases[] = {
      {"defaults", {}, LINK_HEAD "game.cpe"},
      {"binary", {{u"OutputFormat", 1}}, "TRAMLINK /c /p /s @C:\\p\\game.lk,$(OutDir)game.bin"},
      {"S-record", {{u"OutputFormat", 2}}, "TRAMLINK /c /ps /s @C:\\p\\game.lk,$(OutDir)game.sre"},
      {"any other format", {{u"OutputFormat", 9}}, "TRAMLINK /c /ps /s @C:\\p\\game.lk,$(OutDir)game.sre"},
      {"binary under a name with an extension",
       {{u"OutputFormat", 1}, {u"OutputName", u"prog.abs"}},
       "TRAMLINK /c /p /s @C:\\p\\game.lk,$(OutDir)prog.abs"},
      {"all switches",
       {{u"AddOverlayRecognitionBytes", 1},
        {u"ZeroBSSSections", 1},
        {u"ListExternals", 1},
        {u"MultipleDefsWarning", 1},
        {u"MultipleDeclsWarning", 1},
        {u"OutputFormat", 1}},
       "TRAMLINK /v /z /c /m /wl /wm /p /s @C:\\p\\game.lk,$(OutDir)game.bin"},
      {"no switches",
       {{u"CaseSensitive", 0}, {u"Options", u""}},
       "TRAMLINK @C:\\p\\game.lk,$(OutDir)game.cpe"},
      {"lists, in an order of their own",
       {{u"Options", u"/s;/t"},
        {u"LibraryPath", u"lib;C:\\My Lib"},
        {u"EquateSymbols", u"A=1;B=2"},
        {u"RelocationFilePath", u"r.rel"},
        {u"RelocationFileStyle", 1},
        {u"GPRegisterLocation", u"$8000"}},
       "TRAMLINK /c /gp$8000 /rmips=r.rel /eA=1 /eB=2 /llib /l\"C:\\My Lib\" /s /t "
       "@C:\\p\\game.lk,$(OutDir)game.cpe"},
      {"relocation path without a style", {{u"RelocationFilePath", u"r.rel"}}, LINK_HEAD "game.cpe"},
      {"relocation style without a path", {{u"RelocationFileStyle", 1}}, LINK_HEAD "game.cpe"},
      {"map", {{u"CreateMapFile", 1}}, LINK_HEAD "game.cpe,,$(OutDir)game.map"},
      {"symbols", {{u"CreateSymbolFile", 1}}, LINK_HEAD "game.cpe,$(OutDir)game.sym"},
      {"symbols and map",
       {{u"CreateSymbolFile", 1}, {u"CreateMapFile", 1}},
       LINK_HEAD "game.cpe,$(OutDir)game.sym,$(OutDir)game.map"},
      {"directories stay under the output directory",
       {{u"OutputName", u"sub\\prog"}, {u"CreateSymbolFile", 1}},
       LINK_HEAD "sub\\prog.cpe,$(OutDir)sub\\prog.sym"},
      {"an extension costs the side files their directory",
       {{u"OutputName", u"sub\\prog.abs"}, {u"CreateSymbolFile", 1}},
       LINK_HEAD "sub\\prog.abs,$(OutDir)prog.sym"},
  };
  for (const auto& row : cases) EXPECT_EQ(linker(row.properties), row.command) << row.name;
}

TEST(LinkerCommand, DoesNotQuoteTheScript) {
  EXPECT_EQ(linker({}, u"C:\\My Game\\a b.lk"), "TRAMLINK /c /s @C:\\My Game\\a b.lk,$(OutDir)game.cpe");
}

}  // namespace
}  // namespace forgeyard::test
