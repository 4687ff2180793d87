#include "adapters/compiler/make_rule.h"

#include <cstddef>

namespace forgeyard {
namespace {

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  MakeRule read() {
    MakeRule rule;
    if (!skipTarget()) return rule;
    while (skipBlanks()) rule.prerequisites.push_back(takeName());
    rule.complete = restIsPhony();
    return rule;
  }

 private:
  char peek(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\n'; }
  bool atLineEnd(std::size_t ahead = 0) const {
    return peek(ahead) == '\n' || (peek(ahead) == '\r' && peek(ahead + 1) == '\n');
  }
  bool atBlank(std::size_t ahead = 0) const { return peek(ahead) == ' ' || peek(ahead) == '\t'; }
  bool atContinuation() const { return at_ < text_.size() && text_[at_] == '\\' && atLineEnd(1); }
  void skipContinuation() { at_ += peek(1) == '\r' ? 3 : 2; }

  // A colon inside a name (that of a drive, say) has no blank behind it.
  bool skipTarget() {
    for (; at_ < text_.size(); ++at_) {
      if (text_[at_] != ':') continue;
      ++at_;
      if (atBlank() || atLineEnd()) return true;
      --at_;
    }
    return false;
  }

  // To the next name; false at the end of the rule.
  bool skipBlanks() {
    for (;;) {
      if (atBlank()) {
        ++at_;
      } else if (atContinuation()) {
        skipContinuation();
      } else {
        return !atLineEnd();
      }
    }
  }

  std::string takeName() {
    std::string name;
    while (!atBlank() && !atLineEnd() && !atContinuation()) {
      if (peek() == '\\') {
        takeBackslashes(name);
      } else {
        at_ += peek() == '$' && peek(1) == '$' ? 1 : 0;
        name += text_[at_++];
      }
    }
    return name;
  }

  // A blank in a name has a backslash before it, and backslashes of the name before that are doubled. A
  // number sign has one before it. Any other backslash is itself.
  void takeBackslashes(std::string& name) {
    std::size_t count = 0;
    while (peek(count) == '\\') ++count;
    if (atLineEnd(count)) --count;  // the last one continues the line
    at_ += count;
    if (atBlank()) {
      name.append(count / 2, '\\');
      if (count % 2 != 0) name += text_[at_++];
    } else if (peek() == '#' && count > 0) {
      name.append(count - 1, '\\');
      name += text_[at_++];
    } else {
      name.append(count, '\\');
    }
  }

  bool restIsPhony() {
    for (std::string_view rest = text_.substr(at_ < text_.size() ? at_ : text_.size()); !rest.empty();) {
      std::string_view line = rest.substr(0, rest.find('\n'));
      rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : rest.size());
      if (line.ends_with('\r')) line.remove_suffix(1);
      if (!line.empty() && !line.ends_with(':')) return false;
    }
    return true;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

MakeRule readMakeRule(std::string_view text) {
  return Reader(text).read();
}

}  // namespace forgeyard
