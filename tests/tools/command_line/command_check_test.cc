#include "tools/command_line/command_check.h"

#include <gtest/gtest.h>

namespace forgeyard {
namespace {

// As every component's map is before a command is looked at: all eleven names have a value.
MacroMap allMacros() {
  MacroMap macros;
  for (std::size_t i = 0; i < kMacroCount; ++i) macros.set(static_cast<Macro>(i), u"");
  return macros;
}

std::string fault(std::u16string_view command, bool runOnce) {
  const std::optional<BString> found = commandFault(command, runOnce, allMacros());
  return found ? found->narrow() : "none";
}

constexpr const char* kSingle = "Command line contains single file macros with 'Execute Once' set.";
constexpr const char* kLists = "Command line contains file list macros but 'Execute Once' is not set.";
constexpr const char* kForm = "Badly formed command line.";
constexpr const char* kEmpty = "Command line is empty.";

TEST(CommandCheck, TellsTheLastFaultOfACommand) {
  const struct {
    const char* name;
    const char16_t* command;
    std::string once;
    std::string perFile;
  } cases[] = {
      {"empty", u"", kEmpty, kEmpty},
      {"a blank is no empty command", u" ", "none", "none"},
      {"no macros", u"tool $HOME (x)", "none", "none"},
      {"InDir", u"$(InDir)", kSingle, "none"},
      {"File", u"$(File)", kSingle, "none"},
      {"FileName", u"$(FileName)", kSingle, "none"},
      {"FileExt", u"$(FileExt)", kSingle, "none"},
      {"FileFullPath", u"$(FileFullPath)", kSingle, "none"},
      {"FileFullPathList", u"$(FileFullPathList)", "none", kLists},
      {"OutFileFullPathList", u"$(OutFileFullPathList)", "none", kLists},
      {"directories", u"$(OutDir)$(WorkDir)$(CIntDir)$(COutDir)", "none", "none"},
      {"undefined", u"a $(Nope) b", "Undefined macro in command line: $(Nope).",
       "Undefined macro in command line: $(Nope)."},
      {"names count case", u"$(file)", "Undefined macro in command line: $(file).",
       "Undefined macro in command line: $(file)."},
      {"no name", u"$()", "Undefined macro in command line: $().", "Undefined macro in command line: $()."},
      {"the later of two faults", u"a $(File) b $(Nope)", "Undefined macro in command line: $(Nope).",
       "Undefined macro in command line: $(Nope)."},
      {"a good macro behind a fault", u"$(Nope) $(OutDir)", "Undefined macro in command line: $(Nope).",
       "Undefined macro in command line: $(Nope)."},
      {"no end", u"a $(File", kForm, kForm},
      {"no end behind an undefined one", u"$(Nope) $(", kForm, kForm},
      {"no end behind a good one", u"$(OutDir) $(OutDir", kForm, kForm},
      {"one inside another", u"$($(File))", "Undefined macro in command line: $($(File).",
       "Undefined macro in command line: $($(File)."},
      {"dollar at the end", u"a $", "none", "none"},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(fault(row.command, true), row.once) << row.name << ", once";
    EXPECT_EQ(fault(row.command, false), row.perFile) << row.name << ", for each file";
  }
}

}  // namespace
}  // namespace forgeyard
