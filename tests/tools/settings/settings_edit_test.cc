// Properties that follow from others, in settings that a user edits.

#include "typelib/settings_edit.h"

#include <gtest/gtest.h>

#include "tests/support/set_properties.h"
#include "tools/assembler/asm_settings.h"
#include "tools/command_line/cmd_line_settings.h"
#include "tools/compiler/cc_settings.h"
#include "tools/linker/linker_settings.h"

namespace forgeyard::test {
namespace {

// Puts one property after the other and reports each.
void edit(IDispatch& settings, const Properties& properties) {
  for (const auto& [name, value] : properties) {
    setProperty(settings, name, value);
    std::int32_t id = 0;
    ASSERT_EQ(settings.GetIDsOfNames({&name, 1}, &id), S_OK);
    EXPECT_EQ(reportEdit(&settings, id), S_OK) << name.narrow();
  }
}

struct Case {
  const char* name;
  Properties edits;
  std::string input;
  std::string output;
};

template <class Class>
void expectFiles(std::initializer_list<Case> cases) {
  for (const Case& row : cases) {
    const auto settings = make<Class>();
    edit(*settings, row.edits);
    EXPECT_EQ(shown(getProperty(*settings, u"Input")), row.input) << row.name;
    EXPECT_EQ(shown(getProperty(*settings, u"Output")), row.output) << row.name;
  }
}

constexpr const char* kAllSources = ".c;.i;.ii;.m;.cc;.cxx;.cpp;.C;.s;.S";
constexpr const char* kWithoutAssembler = ".c;.i;.ii;.m;.cc;.cxx;.cpp;.C";

TEST(SettingsEdit, InputAndOutputOfACompilerFollowItsMode) {
  expectFiles<CcSettings>({
      {"to an object", {{u"TranslateMode", 0}}, kAllSources, ".obj"},
      {"to assembler source", {{u"TranslateMode", 1}}, kWithoutAssembler, ".s"},
      {"there and back", {{u"TranslateMode", 1}, {u"TranslateMode", 0}}, kAllSources, ".obj"},
      {"a number beyond the choices, as in the command", {{u"TranslateMode", 5}}, kWithoutAssembler, ".s"},
      {"over what was there", {{u"Output", u".o"}, {u"TranslateMode", 1}}, kWithoutAssembler, ".s"},
      {"a later edit stays", {{u"TranslateMode", 1}, {u"Output", u".asm"}}, kWithoutAssembler, ".asm"},
      {"another property changes neither", {{u"Output", u".o"}, {u"WarningLevel", 0}}, kAllSources, ".o"},
  });
}

TEST(SettingsEdit, OutputOfAnAssemblerFollowsItsTwoFileFlags) {
  expectFiles<AsmSettings>({
      {"listing", {{u"CreateListingFile", 1}}, "", ".obj;.lst"},
      {"symbols", {{u"CreateSymbolFile", 1}}, "", ".obj;.sym"},
      {"both, in the order of the command",
       {{u"CreateListingFile", 1}, {u"CreateSymbolFile", 1}},
       "",
       ".obj;.sym;.lst"},
      {"off again", {{u"CreateListingFile", 1}, {u"CreateListingFile", 0}}, "", ".obj"},
      {"another flag changes nothing", {{u"Output", u".o"}, {u"WriteEquates", 0}}, "", ".o"},
  });
}

TEST(SettingsEdit, OutputOfALinkerFollowsItsNames) {
  expectFiles<LinkerSettings>({
      {"name", {{u"OutputName", u"prog"}}, ".lk", "prog.cpe"},
      {"format", {{u"OutputName", u"prog"}, {u"OutputFormat", 1}}, ".lk", "prog.bin"},
      {"symbols",
       {{u"OutputName", u"sub\\prog"}, {u"CreateSymbolFile", 1}},
       ".lk",
       "sub\\prog.cpe;sub\\prog.sym"},
      {"map", {{u"OutputName", u"prog.abs"}, {u"CreateMapFile", 1}}, ".lk", "prog.abs;prog.map"},
      {"no name yet: a build finds one", {{u"Output", u"x"}, {u"CreateMapFile", 1}}, ".lk", ""},
      {"name cleared", {{u"OutputName", u"prog"}, {u"OutputName", u""}}, ".lk", ""},
      {"another flag changes nothing", {{u"Output", u"x"}, {u"CaseSensitive", 0}}, ".lk", "x"},
  });
}

TEST(SettingsEdit, NothingFollowsInACommandLine) {
  expectFiles<CmdLineSettings>({{"once", {{u"Output", u"x"}, {u"RunOnce", 1}}, "", "x"}});
}

TEST(SettingsEdit, ABarePutChangesItsPropertyAlone) {
  const auto settings = make<CcSettings>();
  setProperty(*settings, u"TranslateMode", 1);
  EXPECT_EQ(shown(getProperty(*settings, u"Output")), ".obj");
}

}  // namespace
}  // namespace forgeyard::test
