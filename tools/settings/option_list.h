#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace forgeyard {

// An option of a generated command: a prefix and a semicolon list of values that follow it.
struct OptionPair {
  std::u16string prefix;
  std::u16string value;
};

// Appends the option to a command: for each entry of the list the prefix, the entry and one blank. An entry
// that contains a blank is quoted unless it already has a quote at either end. Appends nothing for an empty
// list.
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

// Concatenates, in order, those of several fixed texts whose condition holds.
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
