#include "workbench/import/source_text.h"

#include <cctype>

namespace forgeyard::workbench {

namespace {

bool isWordCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

// One pass over the text: strings, comments and directives as a whole, the rest by words.
class TextReader {
 public:
  explicit TextReader(std::string_view text) : text_(text) {}

  SourceFacts read() {
    while (at_ < text_.size()) readNext();
    return std::move(facts_);
  }

 private:
  char current() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  bool startsWith(std::string_view word) const { return text_.substr(at_).starts_with(word); }

  void readNext() {
    const char c = text_[at_];
    if (c == '\n') {
      lineBegins_ = true;
      ++at_;
    } else if (isBlank(c) || c == '\r') {
      ++at_;
    } else if (startsWith("/*") || startsWith("//")) {
      skipComment();
    } else if (c == '#' && lineBegins_) {
      readDirective();
    } else {
      readToken(c);
      lineBegins_ = false;
    }
  }

  void readToken(char c) {
    if (c == '"' || c == '\'') {
      skipLiteral(c);
    } else if (c == '.' && lineBegins_ && startsWith(".include")) {
      at_ += std::string_view(".include").size();
      readInclude();
    } else if (isWordCharacter(c)) {
      readWord();
    } else {
      previous_ = c;
      ++at_;
    }
  }

  void skipComment() {
    const bool block = text_[at_ + 1] == '*';
    const std::size_t end = text_.find(block ? "*/" : "\n", at_ + 2);
    at_ = end == text_.npos ? text_.size() : end + (block ? 2 : 0);
  }

  // One that isn't closed ends with its line: an apostrophe in an assembler's comment begins none.
  void skipLiteral(char quote) {
    for (++at_; at_ < text_.size() && text_[at_] != quote && text_[at_] != '\n'; ++at_) {
      if (text_[at_] == '\\' && at_ + 1 < text_.size()) ++at_;
    }
    if (current() == quote) ++at_;
    previous_ = quote;
  }

  void skipBlanks() {
    while (isBlank(current())) ++at_;
  }

  std::string_view takeWord() {
    const std::size_t start = at_;
    while (isWordCharacter(current())) ++at_;
    return text_.substr(start, at_ - start);
  }

  void readDirective() {
    ++at_;
    skipBlanks();
    const std::string_view name = takeWord();
    if (name == "include" || name == "import") readInclude();
    if (name.starts_with("if")) ++conditions_;
    if (name == "endif" && conditions_ > 0) --conditions_;
    skipDirective();
  }

  void skipDirective() {
    for (; at_ < text_.size() && text_[at_] != '\n'; ++at_) {
      if (startsWith("/*")) {
        skipComment();
        --at_;
      } else if (startsWith("\\\n")) {
        ++at_;
      } else if (startsWith("\\\r\n")) {
        at_ += 2;
      }
    }
  }

  void readInclude() {
    skipBlanks();
    const char open = current();
    if (open != '"' && open != '<') return;
    const std::size_t end = text_.find(open == '"' ? '"' : '>', at_ + 1);
    if (end == text_.npos || text_.substr(at_, end - at_).find('\n') != text_.npos) return;
    facts_.includes.push_back({std::string(text_.substr(at_ + 1, end - at_ - 1)), open == '"'});
    at_ = end + 1;
  }

  void readWord() {
    const bool atLineStart = lineBegins_;
    const char before = previous_;
    const std::string_view word = takeWord();
    previous_ = word.back();
    if (word == "main" && before != ':' && before != '.' && before != '>') {
      const bool label = atLineStart && current() == ':';
      if (label || definesFunction()) foundMain();
    }
  }

  // Behind a function's name: parentheses, and behind them a body, or what may stand before one.
  bool definesFunction() const {
    std::size_t at = text_.find_first_not_of(" \t\r\n", at_);
    if (at == text_.npos || text_[at] != '(') return false;
    int depth = 0;
    for (; at < text_.size(); ++at) {
      if (text_[at] == '(') ++depth;
      if (text_[at] == ')' && --depth == 0) break;
      if (text_[at] == ';' || text_[at] == '{') return false;
    }
    at = text_.find_first_not_of(" \t\r\n", at + 1);
    if (at == text_.npos) return false;
    return text_[at] == '{' || text_.substr(at).starts_with("->") || text_.substr(at).starts_with("/*") ||
           text_.substr(at).starts_with("//") || isWordCharacter(text_[at]);
  }

  void foundMain() {
    const MainFunction found = conditions_ > 0 ? MainFunction::Conditional : MainFunction::Present;
    if (found > facts_.main) facts_.main = found;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  bool lineBegins_ = true;
  char previous_ = '\0';  // of the token before
  int conditions_ = 0;
  SourceFacts facts_;
};

}  // namespace

SourceFacts readSourceText(std::string_view text) {
  return TextReader(text).read();
}

}  // namespace forgeyard::workbench
