#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard::console {

enum class Shell : std::uint8_t { Bash, Zsh, Fish };

std::optional<Shell> shellNamed(std::string_view name);

// A command line up to the cursor, taken apart as a shell does it.
struct ShellLine {
  std::vector<std::string> words;  // without the one at the cursor
  std::string current;             // that one, as far as it is typed
  char quote = 0;                  // the quote that is open at the cursor; 0 for none
  // How much of the current word stands before what Bash replaces: its line editor begins anew behind an
  // opening quote and behind "=" and the like.
  std::size_t kept = 0;
};

// Quotes and backslashes are resolved, "~/" at the beginning of a word and variables of the environment too;
// nothing is run.
ShellLine readShellLine(std::string_view text, Shell shell);

// The text as it is to be typed for Bash, inside of that open quote or of none.
std::string quotedForBash(std::string_view text, char quote);

}  // namespace forgeyard::console
