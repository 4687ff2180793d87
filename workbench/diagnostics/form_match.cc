#include "workbench/diagnostics/form_match.h"

#include <algorithm>
#include <limits>

#include "platform/text/narrow.h"

namespace forgeyard::workbench::diagnostic_forms {

namespace {

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
      if (kind != u'j') (kind == u'p' || kind == u'q' ? found_.tool : found_.file) = narrowFromWide(taken);
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
        return taken.find(u' ') == taken.npos && taken.front() != u'\'';
      case u'j':
        return taken.ends_with(u".o") || taken.ends_with(u".obj") || taken.ends_with(u")");
      default:
        return true;
    }
  }

  View line_;
  std::optional<std::size_t> message_;
  Diagnostic found_;
};

}  // namespace

bool isOneOf(View path, std::span<const View> names) {
  if (path.empty()) return false;
  const auto isIt = [&](View name) { return path.back() == name.back() && endsWithName(path, name); };
  return std::any_of(names.begin(), names.end(), isIt) && path.find(u' ') == path.npos;
}

bool isScript(View path) {
  return path.ends_with(u".lk") || path.ends_with(u".ld") || path.ends_with(u".lds");
}

std::optional<Diagnostic> match(View line, const Form& form) {
  Match attempt(line, form.severity);
  if (!attempt.match(form.pattern)) return std::nullopt;
  Diagnostic found = attempt.take();
  found.consequence = form.consequence;
  if (!found.file.empty()) found.tool.clear();
  if (found.file.empty()) found.line = found.column = 0;
  if (found.text.empty()) {
    found.tool.clear();
    found.text = narrowFromWide(line);
  }
  return found;
}

}  // namespace forgeyard::workbench::diagnostic_forms
