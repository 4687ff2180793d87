#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace forgeyard {

// An option of a generated command: a prefix and a semicolon list of values to put behind it.
struct OptionPair {
  std::u16string prefix;
  std::u16string value;
};

// Appends the option to a command: the prefix and the entry, for each entry of the list, with one blank
// behind. An entry with a blank in it is quoted unless it has a quote at either end already. No entry, no
// text.
void ExpandOptionPair(const OptionPair& option, std::u16string& command);

// The options of a generated command in order.
class OptionList {
 public:
  void add(std::u16string_view prefix, std::u16string_view value) {
    options_.push_back({std::u16string(prefix), std::u16string(value)});
  }
  void expand(std::u16string& command) const {
    for (const OptionPair& option : options_) ExpandOptionPair(option, command);
  }

 private:
  std::vector<OptionPair> options_;
};

// A choice of fixed texts, put together in order: those whose condition holds.
class SwitchText {
 public:
  SwitchText& add(bool condition, std::u16string_view text) {
    if (condition) text_ += text;
    return *this;
  }
  const std::u16string& text() const { return text_; }

 private:
  std::u16string text_;
};

}  // namespace forgeyard
