#pragma once

#include <string>

namespace forgeyard::console {

// What stands for standard input and output among the names of files.
inline constexpr const char* kStandardStream = "-";

// The whole of standard input, to its end.
std::string readStandardInput();

}  // namespace forgeyard::console
