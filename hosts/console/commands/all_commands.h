#pragma once

#include <span>
#include <vector>

#include "hosts/console/commands/command.h"

namespace forgeyard::console {

// Every command, in the order of the help.
std::vector<const Command*> allCommands();
std::span<const CommandGroup> commandGroups();

}  // namespace forgeyard::console
