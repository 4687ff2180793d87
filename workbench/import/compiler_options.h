#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace forgeyard::workbench {

// What becomes of an option.
enum class OptionRole : std::uint8_t {
  Dropped,  // the component or the link has its own
  Include,
  Define,
  Undefine,
  Path,  // kept, with its value as a path
  Kept,
  Optimisation,
  Feature,
  Machine,
  Debug,
  Warning,
  Preprocessor,
  Assembler,
};

// Where the value of an option stands.
enum class OptionValue : std::uint8_t { None, Joined, Apart, Both };

struct OptionForm {
  std::string_view name;
  OptionValue value;
  OptionRole role;
};

// Null for an option that the table doesn't know, which is one without a value.
const OptionForm* formOfOption(const std::string& word);

// Whether the link of the objects needs the option too.
bool isForLinkToo(const std::string& word);

}  // namespace forgeyard::workbench
