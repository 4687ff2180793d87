#include "hosts/console/usage/shell_line.h"

#include <cctype>
#include <cstdlib>

namespace forgeyard::console {

namespace {

constexpr std::string_view kBlanks = " \t\n";
constexpr std::string_view kBreaks = "@><=;|&(:";  // those of Bash that are no blanks and no quotes

bool isNameCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

class Reader {
 public:
  Reader(std::string_view text, Shell shell) : text_(text), shell_(shell) {}

  ShellLine read() {
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (line_.quote != 0) {
        quoted(c);
      } else {
        plain(c);
      }
      ++at_;
    }
    return std::move(line_);
  }

 private:
  void plain(char c) {
    if (kBlanks.find(c) != kBlanks.npos) return endWord();
    if (c == '\'' || c == '"') {
      line_.quote = c;
      line_.kept = line_.current.size();
    } else if (c == '\\') {
      escaped();
    } else if (c == '$') {
      variable();
    } else if (c == '~' && !begun_ && followsSlash()) {
      add(environment("HOME"));
    } else {
      add(std::string_view(&text_[at_], 1));
      if (kBreaks.find(c) != kBreaks.npos) line_.kept = line_.current.size();
    }
    begun_ = true;
  }

  void quoted(char c) {
    if (c == line_.quote) {
      line_.quote = 0;
    } else if (c == '\\' && escapes(next())) {
      escaped();
    } else if (c == '$' && line_.quote == '"') {
      variable();
    } else {
      add(std::string_view(&text_[at_], 1));
    }
  }

  // Whether a backslash inside of the open quote takes that character's meaning away.
  bool escapes(char c) const {
    if (line_.quote == '"') return c == '"' || c == '\\' || c == '$' || (c == '`' && shell_ != Shell::Fish);
    return shell_ == Shell::Fish && (c == '\'' || c == '\\');
  }

  void escaped() {
    if (at_ + 1 >= text_.size()) return;
    ++at_;
    add(std::string_view(&text_[at_], 1));
  }

  void variable() {
    const bool braces = next() == '{';
    const std::size_t start = at_ + (braces ? 2 : 1);
    std::size_t end = start;
    while (end < text_.size() && isNameCharacter(text_[end])) ++end;
    const bool whole = end > start && (!braces || (end < text_.size() && text_[end] == '}'));
    if (!whole) return add("$");
    add(environment(std::string(text_.substr(start, end - start))));
    at_ = braces ? end : end - 1;
  }

  static std::string environment(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value ? value : "";
  }

  char next() const { return at_ + 1 < text_.size() ? text_[at_ + 1] : '\0'; }
  bool followsSlash() const { return next() == '/'; }

  void add(std::string_view text) { line_.current += text; }

  void endWord() {
    if (begun_) line_.words.push_back(std::move(line_.current));
    line_.current.clear();
    line_.kept = 0;
    begun_ = false;
  }

  std::string_view text_;
  Shell shell_;
  std::size_t at_ = 0;
  bool begun_ = false;  // a word, maybe an empty one
  ShellLine line_;
};

}  // namespace

std::optional<Shell> shellNamed(std::string_view name) {
  if (name == "bash") return Shell::Bash;
  if (name == "zsh") return Shell::Zsh;
  if (name == "fish") return Shell::Fish;
  return std::nullopt;
}

ShellLine readShellLine(std::string_view text, Shell shell) {
  return Reader(text, shell).read();
}

std::string quotedForBash(std::string_view text, char quote) {
  constexpr std::string_view kPlain = "_./=:,+%@^-";
  constexpr std::string_view kSpecialInQuotes = "\\\"$`";
  std::string result;
  for (const char c : text) {
    const bool plain = isNameCharacter(c) || static_cast<signed char>(c) < 0 || kPlain.find(c) != kPlain.npos;
    if (quote == '\'') {
      result += c == '\'' ? "'\\''" : std::string(1, c);
      continue;
    }
    const bool special = quote == '"' ? kSpecialInQuotes.find(c) != kSpecialInQuotes.npos : !plain;
    if (special) result += '\\';
    result += c;
  }
  return result;
}

}  // namespace forgeyard::console
