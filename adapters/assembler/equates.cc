#include "adapters/assembler/equates.h"

#include <algorithm>

namespace forgeyard {

std::string localEquates(std::string_view symbols) {
  constexpr std::string_view kLocalAbsolute = " a ";  // NAME TYPE VALUE
  std::string names;
  while (!symbols.empty()) {
    const std::string_view line = symbols.substr(0, symbols.find('\n'));
    symbols.remove_prefix(std::min(line.size() + 1, symbols.size()));
    const std::size_t type = line.rfind(kLocalAbsolute);
    if (type != line.npos) names.append(line.substr(0, type)).append("\n");
  }
  return names;
}

}  // namespace forgeyard
