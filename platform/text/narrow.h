#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace forgeyard {

// Between UTF-8 (paths, file operations, tool output) and UTF-16 (every interface) without loss in either
// direction, whatever the input holds:
//   a byte 0xNN that is no part of valid UTF-8   <->  the lone unit U+DCNN (U+DC80..U+DCFF)
//   any other lone surrogate                     <->  its three-byte form
// Three bytes that would read back as something else (the form of U+DC80..U+DCFF, or the second half of a
// pair whose first half stands right before it) count as invalid bytes and are escaped one by one.
std::u16string wideFromNarrow(std::string_view narrow);
std::string narrowFromWide(std::u16string_view wide);

// For callers that own the buffer: the exact number of units, and the conversion into that many units.
std::size_t wideLength(std::string_view narrow) noexcept;
void widenInto(std::string_view narrow, char16_t* out) noexcept;

// One character of narrow or wide text: its code point and how many bytes or units it takes. A byte or unit
// that stands alone is a character of its own, with the code point that its wide form would have.
struct DecodedCharacter {
  char32_t codePoint = 0;
  std::size_t length = 1;
};
DecodedCharacter decodeCharacter(std::string_view text, std::size_t at) noexcept;
DecodedCharacter decodeCharacter(std::u16string_view text, std::size_t at) noexcept;

}  // namespace forgeyard
