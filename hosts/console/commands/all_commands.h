#pragma once

#include <span>
#include <vector>

#include "hosts/console/commands/command.h"

namespace forgeyard::console {

// Every command, in the order of the help.
std::vector<const Command*> allCommands();
// Where they come from, those of one heading together.
std::span<const CommandFamily> commandFamilies();
std::span<const CommandGroup> commandGroups();

// The parts of a command's name, which has one word or two.
std::string firstWord(std::string_view name);
std::string lastWord(std::string_view name);
bool hasGroup(std::string_view name);

}  // namespace forgeyard::console
