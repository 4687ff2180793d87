#include "hosts/console/commands/all_commands.h"

namespace forgeyard::console {

namespace {

constexpr std::array kGroups{
    CommandGroup{"folder", "Folders of source files"},
    CommandGroup{"component", "The components of the project"},
    CommandGroup{"file", "The source files of the project"},
    CommandGroup{"config", "The configurations of the project"},
    CommandGroup{"workspace", "The projects that this user works on"},
    CommandGroup{"target", "The tool chains that this user's builds can use"},
    CommandGroup{"export", "Files for other build systems and tools"},
};

// In the order of --help, one a line.
constexpr std::span<const Command> (*kFamilies[])() = {
    // clang-format off
    projectCommands,
    importCommands,
    exportCommands,
    componentCommands,
    connectionCommands,
    fileCommands,
    configurationCommands,
    propertyCommands,
    workspaceCommands,
    targetCommands,
    buildCommands,
    watchCommands,
    planCommands,
    graphCommands,
    dumpCommands,
    restoreCommands,
    mergeCommands,
    automationCommands,
    moduleCommands,
    doctorCommands,
    usageCommands,
    // clang-format on
};

}  // namespace

std::vector<const Command*> allCommands() {
  std::vector<const Command*> all;
  for (const auto& family : kFamilies) {
    for (const Command& command : family()) all.push_back(&command);
  }
  return all;
}

std::span<const CommandGroup> commandGroups() {
  return kGroups;
}

std::string firstWord(std::string_view name) {
  return std::string(name.substr(0, name.find(' ')));
}
std::string lastWord(std::string_view name) {
  return std::string(name.substr(name.rfind(' ') + 1));
}
bool hasGroup(std::string_view name) {
  return name.find(' ') != name.npos;
}

}  // namespace forgeyard::console
