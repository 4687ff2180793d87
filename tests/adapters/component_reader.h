#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {

// What the compiler component makes of a dependency file: written down here a second time, from its
// description, so that the adapter is held to what the reader does and not to what it meant to write.
inline std::vector<std::string> readAsComponent(std::string_view file) {
  if (file.size() < 2) return {};
  const std::string_view text = file.substr(0, file.size() - 2);
  const auto toBlank = [&](std::size_t at) { return std::min(text.find(' ', at), text.size()); };
  std::vector<std::string> names;
  std::size_t at = toBlank(0);
  if (at < text.size()) at = toBlank(at + 1);
  while (at < text.size()) {
    ++at;
    if (at == text.size() || text[at] == '\\') {
      at = toBlank(at);
      continue;
    }
    const std::size_t end = toBlank(at);
    names.emplace_back(text.substr(at, end - at));
    at = end;
  }
  return names;
}

}  // namespace forgeyard
