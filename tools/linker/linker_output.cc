#include "tools/linker/linker_output.h"

#include "tools/settings/value_of.h"

namespace forgeyard {

namespace {

// Returns what follows the last separator.
std::u16string_view lastComponent(std::u16string_view path) {
  const std::size_t separator = path.find_last_of(u"\\/:");
  return separator == path.npos ? path : path.substr(separator + 1);
}

std::u16string_view extensionOf(LinkFormat format) {
  switch (format) {
    case LinkFormat::Cpe:
      return u".cpe";
    case LinkFormat::Binary:
      return u".bin";
    default:
      return u".sre";
  }
}

}  // namespace

LinkerOutput linkerOutput(std::u16string_view outputName, LinkFormat format) {
  const std::u16string_view file = lastComponent(outputName);
  const std::size_t dot = file.rfind(u'.');
  const std::u16string base(dot == file.npos ? outputName : file.substr(0, dot));
  std::u16string main(outputName);
  if (dot == file.npos) main += extensionOf(format);
  return {std::move(main), base + u".sym", base + u".map"};
}

LinkerOutput linkerOutput(ILinkSettings& settings) {
  return linkerOutput(valueOf(settings, &ILinkSettings::get_OutputName),
                      static_cast<LinkFormat>(valueOf(settings, &ILinkSettings::get_OutputFormat)));
}

void updateLinkerOutput(ILinkSettings& settings) {
  std::u16string output;
  if (!valueOf(settings, &ILinkSettings::get_OutputName).empty()) {
    const LinkerOutput names = linkerOutput(settings);
    output = names.main;
    if (valueOf(settings, &ILinkSettings::get_CreateSymbolFile)) output += u';' + names.symbols;
    if (valueOf(settings, &ILinkSettings::get_CreateMapFile)) output += u';' + names.map;
  }
  check(settings.put_Output(output));
}

std::u16string_view outputNameFor(std::u16string_view script) {
  const std::u16string_view file = lastComponent(script);
  const std::u16string_view stem = file.substr(0, file.rfind(u'.'));
  const bool hasDirectory = file.size() != script.size();
  return hasDirectory && !stem.empty() ? stem : u"output";
}

}  // namespace forgeyard
