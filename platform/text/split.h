#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace forgeyard {

// The text without the blanks (character 32 alone) at both ends.
template <class Char>
constexpr std::basic_string_view<Char> stripBlanks(std::basic_string_view<Char> text) noexcept {
  while (!text.empty() && text.front() == Char(' ')) text.remove_prefix(1);
  while (!text.empty() && text.back() == Char(' ')) text.remove_suffix(1);
  return text;
}

// Calls visit(piece) for each entry of a semicolon list, in order: blanks stripped, empty entries left out.
// For callers that need no list.
template <class Char, class Visit>
constexpr void forEachInList(std::basic_string_view<Char> list, Visit&& visit) {
  while (!list.empty()) {
    const std::size_t end = list.find(Char(';'));
    const auto piece = stripBlanks(list.substr(0, end));
    if (!piece.empty()) visit(piece);
    list = end == list.npos ? std::basic_string_view<Char>() : list.substr(end + 1);
  }
}

// The entries of a semicolon list. They point into `list`.
inline std::vector<std::u16string_view> SplitList(std::u16string_view list) {
  std::vector<std::u16string_view> pieces;
  forEachInList(list, [&](std::u16string_view piece) { pieces.push_back(piece); });
  return pieces;
}

}  // namespace forgeyard
