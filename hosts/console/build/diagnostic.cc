#include "hosts/console/build/diagnostic.h"

#include <algorithm>
#include <array>
#include <limits>

#include "hosts/console/build/diagnostic_forms.h"
#include "platform/text/narrow.h"

namespace forgeyard::console {

namespace {

using View = std::u16string_view;
using diagnostic_forms::Form;
using diagnostic_forms::kForms;
using diagnostic_forms::kPrograms;
using diagnostic_forms::kSilentPrograms;
using diagnostic_forms::kWords;
using diagnostic_forms::Word;

// No name of a file is longer: a line of nothing but colons costs no more than others.
constexpr std::size_t kLongestName = 1024;

bool isDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

bool endsWithName(View path, View name) {
  if (!path.ends_with(name)) return false;
  if (path.size() == name.size()) return true;
  const char16_t before = path[path.size() - name.size() - 1];
  return before == u'/' || before == u'-' || before == u'\\';
}

template <std::size_t N>
bool isOneOf(View path, const std::array<View, N>& names) {
  return path.find(u' ') == path.npos &&
         std::any_of(names.begin(), names.end(), [&](View name) { return endsWithName(path, name); });
}

bool isScript(View path) {
  return path.ends_with(u".lk") || path.ends_with(u".ld") || path.ends_with(u".lds");
}

std::uint32_t numberOf(View digits) {
  std::uint64_t value = 0;
  for (const char16_t c : digits)
    value = std::min<std::uint64_t>(value * 10 + (c - u'0'), std::numeric_limits<std::uint32_t>::max());
  return static_cast<std::uint32_t>(value);
}

// One try of a form at a line.
class Match {
 public:
  Match(View line, Severity severity) : line_(line) { found_.severity = severity; }

  bool match(View pattern) { return step(pattern, 0); }
  Diagnostic take() { return std::move(found_); }

 private:
  View rest(std::size_t at) const { return line_.substr(at); }

  bool step(View pattern, std::size_t at) {
    if (pattern.empty()) return at == line_.size();
    if (pattern[0] == u'%') return field(pattern[1], pattern.substr(2), at);
    if (at == line_.size() || line_[at] != pattern[0]) return false;
    ++at;
    if (pattern[0] == u' ') at = std::min(line_.find_first_not_of(u' ', at), line_.size());
    return step(pattern.substr(1), at);
  }

  bool field(char16_t kind, View pattern, std::size_t at) {
    switch (kind) {
      case u'*':
        return true;
      case u'm':
        message_ = at;
        return step(pattern, at);
      case u't':
        return text(message_ ? *message_ : at);
      case u's':
        return severity(pattern, at);
      case u'l':
        return number(pattern, at, found_.line);
      case u'c':
        return number(pattern, at, found_.column);
      case u'o':
        return offset(pattern, at);
      default:
        return name(kind, pattern, at);
    }
  }

  bool text(std::size_t at) {
    if (at == line_.size()) return false;
    found_.text = narrowFromWide(rest(at));
    if (found_.wordEnd == 0) {
      found_.wordBegin = at;
      found_.wordEnd = line_.size();
    }
    return true;
  }

  bool severity(View pattern, std::size_t at) {
    const auto word = std::find_if(kWords.begin(), kWords.end(),
                                   [&](const Word& one) { return rest(at).starts_with(one.text); });
    if (word == kWords.end()) return false;
    found_.severity = word->severity;
    found_.wordBegin = at;
    found_.wordEnd = at + word->text.size() + 1;
    return step(pattern, at + word->text.size());
  }

  bool number(View pattern, std::size_t at, std::uint32_t& value) {
    std::size_t end = at;
    while (end < line_.size() && isDigit(line_[end])) ++end;
    if (end == at) return false;
    value = numberOf(line_.substr(at, end - at));
    found_.placeEnd = end;
    return step(pattern, end);
  }

  bool offset(View pattern, std::size_t at) {
    if (!rest(at).starts_with(u'(')) return false;
    const std::size_t end = rest(at).substr(0, kLongestName).find(u')');
    if (end == View::npos) return false;
    found_.placeEnd = at + end + 1;
    return step(pattern, found_.placeEnd);
  }

  // Up to each character in turn that the pattern goes on with.
  bool name(char16_t kind, View pattern, std::size_t at) {
    for (std::size_t end = line_.find(pattern[0], at); end != View::npos;
         end = line_.find(pattern[0], end + 1)) {
      if (end - at > kLongestName) return false;
      const View taken = line_.substr(at, end - at);
      if (!fits(kind, taken)) continue;
      found_.placeEnd = end;
      if (!step(pattern, end)) continue;
      (kind == u'p' || kind == u'q' ? found_.tool : found_.file) = narrowFromWide(taken);
      return true;
    }
    return false;
  }

  static bool fits(char16_t kind, View taken) {
    if (taken.empty() || taken.front() == u' ') return false;
    switch (kind) {
      case u'p':
        return isOneOf(taken, kPrograms);
      case u'q':
        return isOneOf(taken, kSilentPrograms);
      case u'k':
        return isScript(taken);
      case u'b':
        return taken.find(u' ') == taken.npos;
      default:
        return true;
    }
  }

  View line_;
  std::optional<std::size_t> message_;
  Diagnostic found_;
};

std::optional<Diagnostic> fitting(View line) {
  for (const Form& form : kForms) {
    Match match(line, form.severity);
    if (!match.match(form.pattern)) continue;
    if (form.ignored) return std::nullopt;
    Diagnostic found = match.take();
    found.consequence = form.consequence;
    if (!found.file.empty()) found.tool.clear();
    if (found.file.empty()) found.line = found.column = 0;
    if (found.text.empty()) {
      found.tool.clear();
      found.text = narrowFromWide(line);
    }
    return found;
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
constexpr std::array<View, 5> kBeginnings{u"undefined ref", u"multiple def", u"more undef", u"relocation",
                                          u"required from"};

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

// Whether a message may begin behind the colon.
bool mayBegin(View behind) {
  while (behind.starts_with(u' ')) behind.remove_prefix(1);
  if (behind.empty() || !kFirstLetters.contain(behind.front())) return false;
  return std::any_of(kWords.begin(), kWords.end(),
                     [&](const Word& one) { return behind.starts_with(one.text); }) ||
         std::any_of(kBeginnings.begin(), kBeginnings.end(),
                     [&](View one) { return behind.starts_with(one); });
}

// Whether any form can fit.
bool worthALook(View line) {
  std::size_t colon = line.find(u':');
  const View head = line.substr(0, colon);
  if (isProgram(head) || isScript(head)) return true;
  if (head.ends_with(u']') || line.starts_with(u"In file") || line.starts_with(u"      ")) return true;
  if (mayBegin(head)) return true;
  for (; colon != View::npos; colon = line.find(u':', colon + 1)) {
    if (mayBegin(line.substr(colon + 1))) return true;
  }
  return false;
}

// Without the escape sequences by which tools colour their words.
std::u16string withoutEscapes(View line) {
  std::u16string result;
  for (std::size_t at = 0; at < line.size(); ++at) {
    if (line[at] != u'\x1b') {
      result += line[at];
    } else if (at + 1 < line.size() && line[at + 1] == u'[') {
      for (at += 2; at < line.size() && (line[at] < u'@' || line[at] > u'~');) ++at;
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

}  // namespace forgeyard::console
