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

constexpr const char* kProjects = "Commands for projects";
constexpr const char* kBuilds = "Commands for builds";
constexpr const char* kLooks = "Commands that show how a project stands";
constexpr const char* kText = "Commands for text and exchange";
constexpr const char* kPrograms = "Commands for scripts and programs";
constexpr const char* kInstallation = "Commands for the installation and its help";

constexpr std::array kFamilies{
    CommandFamily{kProjects, projectCommands},    CommandFamily{kProjects, importCommands},
    CommandFamily{kProjects, componentCommands},  CommandFamily{kProjects, connectionCommands},
    CommandFamily{kProjects, fileCommands},       CommandFamily{kProjects, configurationCommands},
    CommandFamily{kProjects, propertyCommands},   CommandFamily{kProjects, workspaceCommands},
    CommandFamily{kBuilds, buildCommands},        CommandFamily{kBuilds, watchCommands},
    CommandFamily{kBuilds, targetCommands},       CommandFamily{kLooks, planCommands},
    CommandFamily{kLooks, graphCommands},         CommandFamily{kText, dumpCommands},
    CommandFamily{kText, restoreCommands},        CommandFamily{kText, mergeCommands},
    CommandFamily{kText, exportCommands},         CommandFamily{kPrograms, automationCommands},
    CommandFamily{kInstallation, doctorCommands}, CommandFamily{kInstallation, moduleCommands},
    CommandFamily{kInstallation, usageCommands},
};

}  // namespace

std::vector<const Command*> allCommands() {
  std::vector<const Command*> all;
  for (const CommandFamily& family : kFamilies) {
    for (const Command& command : family.commands()) all.push_back(&command);
  }
  return all;
}

std::span<const CommandFamily> commandFamilies() {
  return kFamilies;
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
