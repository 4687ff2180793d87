#include "tools/compiler/cc_command.h"

#include <string>

#include "tools/compiler/translate_mode.h"
#include "tools/settings/leading_number.h"
#include "tools/settings/option_list.h"
#include "tools/settings/value_of.h"

namespace forgeyard {

namespace {

// Level 0 is what a compiler does unasked, so it isn't written.
std::u16string_view levelText(std::uint32_t level) {
  switch (level) {
    case 1:
      return u"1";
    case 2:
      return u"2";
    case 3:
      return u"3";
    default:
      return u"";
  }
}

std::u16string_view warningText(std::uint32_t level) {
  switch (level) {
    case 0:
      return u"-w";
    case 2:
    case 3:
      return u"-Wall";
    default:
      return u"";
  }
}

std::u16string flagText(ICcSettings& settings) {
  return SwitchText()
      .add(valueOf(settings, &ICcSettings::get_DebugInfo) != 0, u"-g;")
      .add(valueOf(settings, &ICcSettings::get_AnsiCompliance) != 0, u"-ansi;")
      .add(valueOf(settings, &ICcSettings::get_SaveIntFiles) != 0, u"-save-temps;")
      .text();
}

// The threshold goes into the line as it was typed.
std::u16string smallDataText(ICcSettings& settings) {
  const BString threshold = valueOf(settings, &ICcSettings::get_SmallDataThreshold);
  if (leadingNumber(threshold) == 0) return {};
  return u"-mgpopt;-G" + std::u16string(threshold.view());
}

}  // namespace

BString compilerCommand(ICcSettings& settings, const BString& compiler, bool reportDependencies) {
  const auto text = [&](HRESULT (ICcSettings::*get)(BString*)) { return valueOf(settings, get); };
  const TranslateMode& mode = translateModeOf(settings);

  OptionList options;
  options.add(compiler + u" ", mode.option);
  options.add(u"", flagText(settings));
  options.add(u"-I", text(&ICcSettings::get_IncludePath));
  options.add(u"-O", levelText(valueOf(settings, &ICcSettings::get_OptimisationLevel)));
  options.add(u"-f", text(&ICcSettings::get_SpecificOptimisations));
  options.add(u"", smallDataText(settings));
  options.add(u"-D", text(&ICcSettings::get_DefineMacros));
  options.add(u"-U", text(&ICcSettings::get_UndefineMacros));
  options.add(u"", warningText(valueOf(settings, &ICcSettings::get_WarningLevel)));
  options.add(u"-W", text(&ICcSettings::get_EnableSpecificWarnings));
  options.add(u"-Wno-", text(&ICcSettings::get_DisableSpecificWarnings));
  options.add(u"-m", text(&ICcSettings::get_TargetCPUOptions));
  options.add(u"-Wp,", text(&ICcSettings::get_PreprocessorOptions));
  options.add(u"-Wa,", text(&ICcSettings::get_AssemblerOptions));
  options.add(u"", text(&ICcSettings::get_Options));
  options.add(u"", reportDependencies ? u"-MD" : u"");
  options.add(u"", u"$(FileFullPath)");
  options.add(u"-o", std::u16string(u"$(OutDir)$(FileName)") + mode.output);

  std::u16string command;
  options.expand(command);
  return command;
}

}  // namespace forgeyard
