#pragma once

#include <string>

namespace forgeyard::workbench {

// Whether the program only starts the compiler that stands behind it: "ccache".
bool isLauncher(const std::string& program);
// Whether the program's name is that of a compiler driver of the GNU kind.
bool isCompilerDriver(const std::string& program);
// The name of the driver for C that goes with it: "gcc" for "/usr/bin/g++-12".
std::string driverForC(const std::string& program);

}  // namespace forgeyard::workbench
