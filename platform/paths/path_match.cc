#include <cstddef>
#include <string_view>

#include "platform/paths/shell_path.h"
#include "platform/text/fold.h"
#include "platform/text/narrow.h"

namespace forgeyard {
namespace {

template <class Char>
using View = std::basic_string_view<Char>;

template <class Char>
constexpr bool isAscii(Char c) {
  return static_cast<char32_t>(c) < 0x80;
}

// Moves both positions behind one character each if the two are equal but for case.
template <class Char>
bool takeEqual(View<Char> file, std::size_t& inFile, View<Char> pattern, std::size_t& inPattern) {
  const Char a = file[inFile];
  const Char b = pattern[inPattern];
  if (isAscii(a) || isAscii(b)) {
    if (foldAscii(a) != foldAscii(b)) return false;
    ++inFile;
    ++inPattern;
    return true;
  }
  const DecodedCharacter x = decodeCharacter(file, inFile);
  const DecodedCharacter y = decodeCharacter(pattern, inPattern);
  if (x.codePoint != y.codePoint && foldCharacter(x.codePoint) != foldCharacter(y.codePoint)) return false;
  inFile += x.length;
  inPattern += y.length;
  return true;
}

template <class Char>
bool isPlainAscii(View<Char> pattern) {
  for (const Char c : pattern) {
    if (!isAscii(c) || c == Char('*') || c == Char('?')) return false;
  }
  return true;
}

template <class Char>
bool endsWithPlain(View<Char> file, View<Char> tail) {
  return file.size() >= tail.size() && equalFoldedAscii(file.substr(file.size() - tail.size()), tail);
}

// Only the last `*` seen is ever widened: what an earlier one could take, the later one can take as well.
template <class Char>
bool matchPattern(View<Char> file, View<Char> pattern) {
  std::size_t inFile = 0;
  std::size_t inPattern = 0;
  std::size_t starEnd = 0;   // in the pattern, behind the last star; 0 for none so far
  std::size_t starFile = 0;  // where the text behind that star begins
  while (inFile < file.size()) {
    if (inPattern < pattern.size() && pattern[inPattern] == Char('*')) {
      starEnd = ++inPattern;
      starFile = inFile;
      const View<Char> rest = pattern.substr(inPattern);
      if (isPlainAscii(rest)) return endsWithPlain(file.substr(inFile), rest);
    } else if (inPattern < pattern.size() && pattern[inPattern] == Char('?')) {
      inFile += decodeCharacter(file, inFile).length;
      ++inPattern;
    } else if (inPattern < pattern.size() && takeEqual(file, inFile, pattern, inPattern)) {
      continue;
    } else if (starEnd != 0) {
      starFile += decodeCharacter(file, starFile).length;
      inFile = starFile;
      inPattern = starEnd;
    } else {
      return false;
    }
  }
  while (inPattern < pattern.size() && pattern[inPattern] == Char('*')) ++inPattern;
  return inPattern == pattern.size();
}

template <class Char>
bool isMatchAll(View<Char> spec) {
  return spec.size() == 3 && spec[0] == Char('*') && spec[1] == Char('.') && spec[2] == Char('*');
}

template <class Char>
bool matchSpec(View<Char> file, View<Char> spec) {
  if (isMatchAll(spec)) return true;
  while (true) {
    while (!spec.empty() && spec.front() == Char(' ')) spec.remove_prefix(1);
    const std::size_t end = spec.find(Char(';'));
    if (matchPattern(file, spec.substr(0, end))) return true;
    if (end == spec.npos) return false;
    spec.remove_prefix(end + 1);
  }
}

}  // namespace

bool PathMatchSpecA(std::string_view file, std::string_view spec) noexcept {
  return matchSpec(file, spec);
}
bool PathMatchSpecA(std::u16string_view file, std::u16string_view spec) noexcept {
  return matchSpec(file, spec);
}

bool isMatchSpec(std::u16string_view text) noexcept {
  return text.starts_with(u' ') || text.find_first_of(u"*?;") != std::u16string_view::npos;
}

}  // namespace forgeyard
