#include "workbench/diagnostics/diagnostic.h"

#include <algorithm>
#include <array>

#include "workbench/diagnostics/form_match.h"

namespace forgeyard::workbench {

namespace {

using namespace diagnostic_forms;

std::optional<Diagnostic> fitting(View line) {
  for (const Form& form : kForms) {
    if (std::optional<Diagnostic> found = match(line, form)) return form.ignored ? std::nullopt : found;
  }
  return std::nullopt;
}

// Blocks of a fixed size compile to a few vector instructions.
bool has(View line, char16_t wanted) {
  constexpr std::size_t kBlock = 16;
  std::size_t at = 0;
  for (; at + kBlock <= line.size(); at += kBlock) {
    unsigned seen = 0;
    for (std::size_t i = 0; i < kBlock; ++i) seen |= line[at + i] == wanted ? 1U : 0U;
    if (seen) return true;
  }
  return line.substr(at).find(wanted) != View::npos;
}

// A set of ASCII characters, for a quick no.
class Letters {
 public:
  constexpr void add(char16_t c) { has_[c] = true; }
  constexpr bool contain(char16_t c) const { return c < has_.size() && has_[c]; }

 private:
  std::array<bool, 128> has_{};
};

// What a message begins with where a form doesn't name the program that speaks.
constexpr std::array<View, 6> kBeginnings{u"undefined ref", u"multiple def",  u"more undef",
                                          u"relocation",    u"required from", u"*** "};

constexpr Letters kFirstLetters = [] {
  Letters letters;
  for (const Word& word : kWords) letters.add(word.text.front());
  for (const View beginning : kBeginnings) letters.add(beginning.front());
  return letters;
}();

constexpr Letters kLastLettersOfPrograms = [] {
  Letters letters;
  for (const View name : kPrograms) letters.add(name.back());
  for (const View name : kSilentPrograms) letters.add(name.back());
  return letters;
}();

bool isProgram(View name) {
  return !name.empty() && kLastLettersOfPrograms.contain(name.back()) &&
         (isOneOf(name, kSilentPrograms) || isOneOf(name, kPrograms));
}

View withoutBlanks(View line) {
  while (line.starts_with(u' ')) line.remove_prefix(1);
  return line;
}

// Whether a message may begin behind the colon.
bool mayBegin(View behind) {
  behind = withoutBlanks(behind);
  if (behind.empty() || !kFirstLetters.contain(behind.front())) return false;
  const auto isIt = [&](View one) { return behind.front() == one.front() && behind.starts_with(one); };
  return std::any_of(kWords.begin(), kWords.end(),
                     [&](const Word& one) {
                       return isIt(one.text) && behind.substr(one.text.size()).starts_with(u':');
                     }) ||
         std::any_of(kBeginnings.begin(), kBeginnings.end(), isIt);
}

// Whether any form can fit.
bool worthALook(View line) {
  std::size_t colon = line.find(u':');
  const View head = line.substr(0, colon);
  if (isProgram(head) || isScript(head)) return true;
  if (withoutBlanks(line).starts_with(line.front() == u' ' ? u"from " : u"In file")) return true;
  if (mayBegin(line)) return true;
  for (; colon != View::npos; colon = line.find(u':', colon + 1)) {
    if (mayBegin(line.substr(colon + 1))) return true;
  }
  return false;
}

// Where the escape sequence ends that begins there: one that colours, a link around a word, or another.
std::size_t behindEscape(View line, std::size_t at) {
  const char16_t kind = ++at < line.size() ? line[at] : u'\0';
  if (kind == u']') {
    const std::size_t end = line.find_first_of(u"\a\x1b", at);
    return end == View::npos ? line.size() : end + (line[end] == u'\a' ? 1 : 2);
  }
  if (kind == u'[') ++at;
  const char16_t first = kind == u'[' ? u'@' : u'0';
  while (at < line.size() && (line[at] < first || line[at] > u'~')) ++at;
  return at + 1;
}

// Without the escape sequences by which tools colour their words.
std::u16string withoutEscapes(View line) {
  std::u16string result;
  for (std::size_t at = 0; at < line.size();) {
    if (line[at] == u'\x1b') {
      at = behindEscape(line, at);
    } else {
      result += line[at++];
    }
  }
  return result;
}

}  // namespace

const char* word(Severity severity) {
  return severity == Severity::Error ? "error" : severity == Severity::Warning ? "warning" : "note";
}

std::string Diagnostic::place() const {
  if (file.empty()) return tool;
  std::string result = file;
  if (line != 0) result += ":" + std::to_string(line);
  if (column != 0) result += ":" + std::to_string(column);
  return result;
}

std::optional<Diagnostic> recognise(std::u16string_view line) {
  if (!has(line, u':')) return std::nullopt;
  if (!has(line, u'\x1b')) return worthALook(line) ? fitting(line) : std::nullopt;
  const std::u16string plainLine = withoutEscapes(line);
  if (!worthALook(plainLine)) return std::nullopt;
  std::optional<Diagnostic> found = fitting(plainLine);
  if (found) found->placeEnd = found->wordBegin = found->wordEnd = 0;
  return found;
}

}  // namespace forgeyard::workbench
