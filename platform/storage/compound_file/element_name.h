#pragma once

#include <string_view>

namespace forgeyard::compound {

// Whether an element may be made under this name: 1 to 31 units, none of them / \ : ! or a null.
bool isValidName(std::u16string_view name) noexcept;

// The upper-case form of one UTF-16 unit by the simple, locale-free mapping that the format orders names by.
char16_t upperCaseUnit(char16_t unit) noexcept;

// The order of a directory, and with it which names are the same: by length, then by upper-cased units.
struct DirectoryOrder {
  using is_transparent = void;
  bool operator()(std::u16string_view a, std::u16string_view b) const noexcept;
};

bool sameName(std::u16string_view a, std::u16string_view b) noexcept;

}  // namespace forgeyard::compound
