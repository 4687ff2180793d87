#include "tools/linker/linker_command.h"

#include <string>

#include "tools/linker/linker_output.h"
#include "tools/settings/file_fields.h"
#include "tools/settings/option_list.h"
#include "tools/settings/value_of.h"

namespace forgeyard {

namespace {

std::u16string switchText(ILinkSettings& settings) {
  const auto on = [&](HRESULT (ILinkSettings::*get)(std::int32_t*)) { return valueOf(settings, get) != 0; };
  const auto format = static_cast<LinkFormat>(valueOf(settings, &ILinkSettings::get_OutputFormat));
  return SwitchText()
      .add(on(&ILinkSettings::get_AddOverlayRecognitionBytes), u"/v;")
      .add(on(&ILinkSettings::get_ZeroBSSSections), u"/z;")
      .add(on(&ILinkSettings::get_CaseSensitive), u"/c;")
      .add(on(&ILinkSettings::get_ListExternals), u"/m;")
      .add(on(&ILinkSettings::get_MultipleDefsWarning), u"/wl;")
      .add(on(&ILinkSettings::get_MultipleDeclsWarning), u"/wm;")
      .add(format == LinkFormat::Binary, u"/p")
      .add(format != LinkFormat::Binary && format != LinkFormat::Cpe, u"/ps")
      .text();
}

}  // namespace

BString linkerCommand(ILinkSettings& settings, const BString& script) {
  OptionList options;
  options.add(u"", switchText(settings));
  options.add(u"/gp", valueOf(settings, &ILinkSettings::get_GPRegisterLocation));
  if (valueOf(settings, &ILinkSettings::get_RelocationFileStyle) != 0) {
    options.add(u"/rmips=", valueOf(settings, &ILinkSettings::get_RelocationFilePath));
  }
  options.add(u"/e", valueOf(settings, &ILinkSettings::get_EquateSymbols));
  options.add(u"/l", valueOf(settings, &ILinkSettings::get_LibraryPath));
  options.add(u"", valueOf(settings, &ILinkSettings::get_Options));

  std::u16string command = u"TRAMLINK ";
  options.expand(command);
  command += u'@';
  command += script.view();
  const LinkerOutput output = linkerOutput(settings);
  const std::u16string directory = u"$(OutDir)";
  addFileFields(command,
                {{true, directory + output.main},
                 {valueOf(settings, &ILinkSettings::get_CreateSymbolFile) != 0, directory + output.symbols},
                 {valueOf(settings, &ILinkSettings::get_CreateMapFile) != 0, directory + output.map}});
  return command;
}

}  // namespace forgeyard
