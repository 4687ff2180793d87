#include "tools/compiler/dependency_file_reader.h"

#include <algorithm>

namespace forgeyard {

namespace {

// The next blank from `position` on, or the end.
std::size_t nextBlank(std::string_view text, std::size_t position) {
  return std::min(text.find(' ', position), text.size());
}

}  // namespace

std::vector<std::string_view> parseDependencyFile(std::string_view text) {
  std::vector<std::string_view> names;
  const std::size_t target = nextBlank(text, 0);
  std::size_t position = nextBlank(text, target + 1);
  while (position < text.size()) {
    ++position;
    const std::size_t end = nextBlank(text, position);
    const bool continuation = position == text.size() || text[position] == '\\';
    if (!continuation) names.push_back(text.substr(position, end - position));
    position = end;
  }
  return names;
}

}  // namespace forgeyard
