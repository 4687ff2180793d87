#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace forgeyard {

template <class Char>
constexpr Char foldAscii(Char c) noexcept {
  return c >= Char('A') && c <= Char('Z') ? static_cast<Char>(c + ('a' - 'A')) : c;
}

// Equal but for the case of A to Z.
template <class Char>
constexpr bool equalFoldedAscii(std::basic_string_view<Char> a, std::basic_string_view<Char> b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && foldAscii(a[i]) != foldAscii(b[i])) return false;
  }
  return true;
}
constexpr bool equalFoldedAscii(std::string_view a, std::string_view b) noexcept {
  return equalFoldedAscii<char>(a, b);
}
constexpr bool equalFoldedAscii(std::u16string_view a, std::u16string_view b) noexcept {
  return equalFoldedAscii<char16_t>(a, b);
}

// The lower-case form of a letter of the Latin, Greek, Cyrillic, Armenian and full-width alphabets where
// upper and lower case pair one to one; any other character is itself. It doesn't depend on the locale.
char32_t foldCharacter(char32_t c) noexcept;

// Equal but for case, in the sense of foldCharacter. Neither allocates.
bool equalFolded(std::string_view a, std::string_view b) noexcept;
bool equalFolded(std::u16string_view a, std::u16string_view b) noexcept;

// Every character folded: a key for tables that are searched without regard to case.
std::string folded(std::string_view text);

}  // namespace forgeyard
