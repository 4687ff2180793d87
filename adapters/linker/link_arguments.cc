#include "adapters/linker/link_arguments.h"

namespace forgeyard {

namespace {

bool isImage(const LinkCommand& command) {
  return command.format != LinkFormat::Executable;
}

}  // namespace

bool isConverted(const LinkCommand& command) {
  return isImage(command) || command.zeroBss;
}

Words linkerArguments(const LinkCommand& command, const LinkerTools& tools, const LinkerInputs& inputs) {
  Words words{tools.ld, "-static"};
  if (isImage(command)) words.push_back("-N");  // or the image begins with pages of headers
  if (!command.relocations.empty()) words.push_back("--emit-relocs");
  if (command.crossReferences) words.push_back("--cref");
  if (command.warnCommon) words.push_back("--warn-common");
  if (!command.mapFile.empty()) words.push_back("-Map=" + command.mapFile);
  if (!command.globalPointer.empty()) append(words, {"--defsym", "_gp=" + command.globalPointer});
  for (const std::string& symbol : command.symbols) append(words, {"--defsym", symbol});
  append(words, command.options);
  for (const std::string& directory : inputs.searched) append(words, {"-L", directory});
  append(words, {"-o", inputs.linked});
  if (!inputs.layout.empty()) append(words, {"-T", inputs.layout});
  if (inputs.scriptHasSections) words.push_back("-T");
  words.push_back(inputs.script);
  return words;
}

Words conversionArguments(const LinkCommand& command, const LinkerTools& tools, const std::string& linked,
                          const std::string& output) {
  Words words{tools.objcopy};
  if (command.zeroBss) {
    for (const std::string section : {".bss", ".sbss"}) {
      append(words, {"--set-section-flags", section + "=alloc,load,contents"});
    }
  }
  if (command.format == LinkFormat::Binary) append(words, {"-O", "binary"});
  if (command.format == LinkFormat::SRecords) append(words, {"-O", "srec", "--srec-forceS3"});
  if (isImage(command)) {
    // They are for loaders, and lie where they make the image huge.
    for (const std::string section : {".MIPS.abiflags", ".reginfo", ".note*"}) append(words, {"-R", section});
  }
  append(words, {linked, output});
  return words;
}

}  // namespace forgeyard
