#pragma once

#include <string>

namespace forgeyard::console {

// The first line that the program of that host path writes when it is asked for its version; empty if it
// can't be started, fails, or takes longer than a few seconds.
std::string programVersion(const std::string& path);

}  // namespace forgeyard::console
