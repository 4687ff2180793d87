#pragma once

namespace forgeyard::console {

// Ends the tools that this process's spawners run, with all that is in their process groups, by force. The
// spawners then end by themselves, once they have cleared up what the tools have left.
void killTools();

}  // namespace forgeyard::console
