#include "platform/text/fold.h"

#include "platform/text/narrow.h"

namespace forgeyard {
namespace {

// Upper-case letters from `first` to `last`. Where the two cases alternate, only every second character is
// upper case, beginning with the first.
struct UpperRange {
  char32_t first;
  char32_t last;
  int toLower;
  bool alternating = false;
};

constexpr UpperRange ALTERNATING(char32_t first, char32_t last) {
  return {first, last, 1, true};
}

constexpr UpperRange kUpper[] = {
    {0x00B5, 0x00B5, 0x307},                                   // micro sign to Greek mu
    {0x00C0, 0x00D6, 32},                                      // Latin 1
    {0x00D8, 0x00DE, 32},        ALTERNATING(0x0100, 0x012F),  // Latin extended
    ALTERNATING(0x0132, 0x0137), ALTERNATING(0x0139, 0x0148), ALTERNATING(0x014A, 0x0177),
    {0x0178, 0x0178, -121},      ALTERNATING(0x0179, 0x017E), ALTERNATING(0x01CD, 0x01DC),
    ALTERNATING(0x01DE, 0x01EF), ALTERNATING(0x01F8, 0x021F), ALTERNATING(0x0222, 0x0233),
    {0x0386, 0x0386, 38},  // Greek
    {0x0388, 0x038A, 37},        {0x038C, 0x038C, 64},        {0x038E, 0x038F, 63},
    {0x0391, 0x03A1, 32},        {0x03A3, 0x03AB, 32},        {0x03C2, 0x03C2, 1},  // final sigma
    {0x0400, 0x040F, 80},                                                           // Cyrillic
    {0x0410, 0x042F, 32},        ALTERNATING(0x0460, 0x0481), ALTERNATING(0x048A, 0x04BF),
    {0x04C0, 0x04C0, 15},        ALTERNATING(0x04C1, 0x04CE), ALTERNATING(0x04D0, 0x052F),
    {0x0531, 0x0556, 48},                               // Armenian
    ALTERNATING(0x1E00, 0x1E95),                        // Latin extended additional
    {0x1E9E, 0x1E9E, -7615},                            // capital sharp s
    ALTERNATING(0x1EA0, 0x1EFF), {0xFF21, 0xFF3A, 32},  // full-width Latin
};

template <class Char>
bool equalFoldedText(std::basic_string_view<Char> a, std::basic_string_view<Char> b) noexcept {
  std::size_t left = 0;
  std::size_t right = 0;
  while (left < a.size() && right < b.size()) {
    if (a[left] == b[right] && static_cast<char32_t>(a[left]) < 0x80) {
      ++left;
      ++right;
      continue;
    }
    const DecodedCharacter x = decodeCharacter(a, left);
    const DecodedCharacter y = decodeCharacter(b, right);
    if (x.codePoint != y.codePoint && foldCharacter(x.codePoint) != foldCharacter(y.codePoint)) return false;
    left += x.length;
    right += y.length;
  }
  return left == a.size() && right == b.size();
}

}  // namespace

char32_t foldCharacter(char32_t c) noexcept {
  if (c < 0x80) return foldAscii(c);
  for (const UpperRange& range : kUpper) {
    if (c < range.first) return c;
    if (c > range.last) continue;
    if (range.alternating && (c - range.first) % 2 != 0) return c;
    return c + static_cast<char32_t>(range.toLower);
  }
  return c;
}

bool equalFolded(std::string_view a, std::string_view b) noexcept {
  return equalFoldedText(a, b);
}
bool equalFolded(std::u16string_view a, std::u16string_view b) noexcept {
  return equalFoldedText(a, b);
}

std::string folded(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter next = decodeCharacter(text, at);
    const char32_t lower = foldCharacter(next.codePoint);
    if (lower < 0x80) {
      result += static_cast<char>(lower);
    } else if (lower == next.codePoint) {
      result += text.substr(at, next.length);
    } else {
      const char16_t unit = static_cast<char16_t>(lower);  // every letter that folds lies in the basic plane
      result += narrowFromWide(std::u16string_view(&unit, 1));
    }
    at += next.length;
  }
  return result;
}

}  // namespace forgeyard
