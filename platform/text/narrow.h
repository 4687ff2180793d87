#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace forgeyard {

// Between UTF-8 (paths, file operations, tool output) and UTF-16 (every interface), for input of any kind:
//   a byte 0xNN that is no part of valid UTF-8   <->  the lone unit U+DCNN (U+DC80..U+DCFF)
//   any other lone surrogate                     <->  its three-byte form
// Three bytes that would not come back as they are (the form of U+DC80..U+DCFF, or of a first half with a
// second half or an escaped byte behind it) are escaped byte by byte. So every narrow text comes back from
// its wide form, and every wide text from its narrow form but one whose escape units together spell valid
// UTF-8.
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
