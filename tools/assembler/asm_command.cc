#include "tools/assembler/asm_command.h"

#include <string>

#include "tools/settings/file_fields.h"
#include "tools/settings/option_list.h"
#include "tools/settings/value_of.h"

namespace forgeyard {

namespace {

std::u16string switchText(IAsmSettings& settings) {
  const auto on = [&](HRESULT (IAsmSettings::*get)(std::int32_t*)) { return valueOf(settings, get) != 0; };
  return SwitchText()
      .add(on(&IAsmSettings::get_ListConditionedOut), u"/c;")
      .add(on(&IAsmSettings::get_WriteNonGlobals), u"/g;")
      .add(on(&IAsmSettings::get_EnableCommonMacros), u"/k;")
      .add(true, u"/l;")  // no property controls it
      .add(on(&IAsmSettings::get_ExpandMacros), u"/m;")
      .add(on(&IAsmSettings::get_DisableWarnings), u"/q;")
      .add(on(&IAsmSettings::get_WriteEquates), u"/w;")
      .add(on(&IAsmSettings::get_MakeUndefinedXREF), u"/x;")
      .add(on(&IAsmSettings::get_LineNumsInDebugInfo), u"/z;")
      .add(on(&IAsmSettings::get_SLDInDebugInfo), u"/zd")
      .text();
}

}  // namespace

BString assemblerCommand(IAsmSettings& settings, const BString& assembler) {
  OptionList options;
  options.add(u"", switchText(settings));
  options.add(u"/e", valueOf(settings, &IAsmSettings::get_EquateSymbols));
  options.add(u"/j", valueOf(settings, &IAsmSettings::get_IncludePath));
  options.add(u"/o", valueOf(settings, &IAsmSettings::get_Options));

  std::u16string command(assembler.view());
  command += u' ';
  options.expand(command);
  command += u"$(FileFullPath),$(OutDir)$(FileName).obj";
  addFileFields(
      command, {{valueOf(settings, &IAsmSettings::get_CreateSymbolFile) != 0, u"$(OutDir)$(FileName).sym"},
                {valueOf(settings, &IAsmSettings::get_CreateListingFile) != 0, u"$(OutDir)$(FileName).lst"}});
  return command;
}

}  // namespace forgeyard
