#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {

// The components write the names of files into their commands without quotes, so a path with a blank in it
// (`\home\u\My Files\a.c`) arrives as several words. These put such a path together again where the files
// that exist leave no doubt. `words[at]` holds or ends in the path's beginning `first`; only words that can't
// be arguments of their own (no option, no absolute path) are ever joined.
struct Healed {
  std::string path;
  std::size_t joined = 0;  // how many of the words behind words[at] belong to it
};

// The shortest joining that `exists` accepts; the first word alone if none does, or if it isn't absolute.
Healed healExisting(std::string_view first, const std::vector<std::string>& words, std::size_t at,
                    const std::function<bool(const std::string&)>& exists);

// The longest joining that `accepts` accepts; the first word alone if none does, or if it isn't absolute.
Healed healOutput(std::string_view first, const std::vector<std::string>& words, std::size_t at,
                  const std::function<bool(const std::string&)>& accepts);

}  // namespace forgeyard
