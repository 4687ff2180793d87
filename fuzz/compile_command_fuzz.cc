// A command of a compilation database, of any bytes: its words and options are taken, what becomes of them is
// always a setting or a note, and an entry of a setting's list that came from one word stays one word for the
// compiler.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/paths/command_line.h"
#include "workbench/import/compiler_settings.h"

namespace {

using namespace forgeyard;
using namespace forgeyard::workbench;

void require(bool holds) {
  if (!holds) std::abort();
}

// Definitions that a compiler would get for the list, as the component and the spawner hand them on.
std::size_t wordsOf(const std::string& list) {
  std::string command;
  for (std::size_t at = 0; at < list.size();) {
    const std::size_t end = std::min(list.find(';', at), list.size());
    command += "-D" + list.substr(at, end - at) + " ";
    at = end + 1;
  }
  return splitArguments(command).size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  CompileCommand command{"/d", "/d/a.c", "", splitShellCommand(text)};
  if (command.arguments.empty()) return 0;
  Notes notes;
  const auto spelled = [](const std::string& path) { return path; };
  for (const Assignment& setting : readCompilerOptions(command, spelled, notes).settings) {
    require(!setting.value.empty() && setting.value.find('\n') == setting.value.npos);
    if (setting.property != "DefineMacros") continue;
    std::size_t entries = 1;
    for (const char c : setting.value) entries += c == ';' ? 1 : 0;
    require(wordsOf(setting.value) == entries);
  }
  for (const std::string& line : notes.lines()) require(!line.empty());
  return 0;
}
