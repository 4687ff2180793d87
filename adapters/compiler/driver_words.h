#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {

// Where in a command the compiler driver is: 0, or after launchers (ccache, distcc, icecc, pump, sccache)
// with their options, `-...` and `NAME=VALUE`. A launcher that no driver follows calls the system's own: then
// its place.
std::size_t driverIndex(const std::vector<std::string>& words);

// Whether an input file of the driver goes to the linker as it is, by its name.
bool isLinkerInput(std::string_view file);

}  // namespace forgeyard
