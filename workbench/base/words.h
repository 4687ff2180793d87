#pragma once

#include <cstddef>
#include <string>

namespace forgeyard::workbench {

// "1 file", "2 files".
inline std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace forgeyard::workbench
