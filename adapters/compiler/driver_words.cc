#include "adapters/compiler/driver_words.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "adapters/common/file_names.h"

namespace forgeyard {
namespace {

constexpr auto kLaunchers = std::to_array<std::string_view>({"ccache", "distcc", "icecc", "pump", "sccache"});
constexpr auto kSourceExtensions = std::to_array<std::string_view>(
    {".c", ".cc", ".cp", ".cpp", ".cxx", ".c++", ".C",   ".CPP", ".i", ".ii", ".m",   ".mm", ".mi", ".mii",
     ".M", ".s",  ".S",  ".sx",  ".f",   ".F",   ".f90", ".F90", ".d", ".go", ".adb", ".h",  ".hh", ".hpp"});
constexpr auto kLinkerExtensions =
    std::to_array<std::string_view>({".o", ".obj", ".lo", ".a", ".lib", ".la", ".so", ".dll"});

template <class Names>
bool contains(const Names& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::string_view extensionOf(std::string_view file) {
  const std::string_view name = baseName(file);
  return name.substr(std::min(name.rfind('.'), name.size()));
}

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool isLauncherOption(std::string_view word) {
  if (word.starts_with('-')) return true;
  const std::size_t equals = word.find('=');
  return equals != word.npos && equals > 0 &&
         std::all_of(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(equals), isNameCharacter);
}

}  // namespace

std::size_t driverIndex(const std::vector<std::string>& words) {
  std::size_t at = 0;
  while (contains(kLaunchers, baseName(words[at]))) {
    std::size_t next = at + 1;
    while (next < words.size() && isLauncherOption(words[next])) ++next;
    if (next == words.size() || contains(kSourceExtensions, extensionOf(words[next]))) break;
    at = next;
  }
  return at;
}

bool isLinkerInput(std::string_view file) {
  return contains(kLinkerExtensions, extensionOf(file)) || baseName(file).find(".so.") != file.npos;
}

}  // namespace forgeyard
