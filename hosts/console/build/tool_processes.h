#pragma once

#include <sys/types.h>

namespace forgeyard::console {

// Ends the tools that this process's spawners run, with all that is in their process groups, by force. The
// spawners then end by themselves, once they have cleared up what the tools have left.
void killTools();

// Ends the process and all that it has started and that still counts as its own, by force.
void killWithChildren(pid_t process);

}  // namespace forgeyard::console
