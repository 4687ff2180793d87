#include "tools/command_line/command_check.h"

namespace forgeyard {

namespace {

bool belongsToOneFile(Macro macro) {
  return macro == Macro::InDir || macro == Macro::File || macro == Macro::FileName ||
         macro == Macro::FileExt || macro == Macro::FileFullPath;
}

bool isFileList(Macro macro) {
  return macro == Macro::FileFullPathList || macro == Macro::OutFileFullPathList;
}

std::optional<BString> macroFault(std::u16string_view name, bool runOnce, const MacroMap& macros) {
  const std::optional<Macro> macro = macros.find(name);
  if (!macro) return BString::concat(u"Undefined macro in command line: ", name, u".");
  if (runOnce && belongsToOneFile(*macro)) {
    return u"Command line contains single file macros with 'Execute Once' set.";
  }
  if (!runOnce && isFileList(*macro)) {
    return u"Command line contains file list macros but 'Execute Once' is not set.";
  }
  return std::nullopt;
}

}  // namespace

std::optional<BString> commandFault(std::u16string_view command, bool runOnce, const MacroMap& macros) {
  if (command.empty()) return u"Command line is empty.";
  std::optional<BString> fault;
  std::size_t end = 0;
  for (;;) {
    const std::size_t begin = command.find(u"$(", end);
    if (begin == command.npos) return fault;
    end = command.find(u')', begin);
    if (end == command.npos) return u"Badly formed command line.";
    ++end;
    if (auto found = macroFault(command.substr(begin, end - begin), runOnce, macros))
      fault = std::move(found);
  }
}

}  // namespace forgeyard
