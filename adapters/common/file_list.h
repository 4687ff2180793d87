#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {

// The comma-separated files at the end of an assembler or linker command. It is written without quotes, so a
// path with a blank in it arrives in several words: these are joined with one blank each and cut at the
// commas. An empty field is a file that isn't wanted; blanks around a field don't count.
std::vector<std::string> readFileList(const std::vector<std::string>& words, std::size_t from);

// The field, or an empty text where the list ends before.
std::string_view field(const std::vector<std::string>& list, std::size_t index) noexcept;

}  // namespace forgeyard
