#pragma once

#include <span>
#include <string_view>

namespace forgeyard::console {

// A command line that shows a command at work.
struct Example {
  std::string_view word;  // the command's first word; empty for those of the whole program
  const char* line;
  const char* help;
};

std::span<const Example> examples();

// Whether an example is of that command, of one word or two, or of that first word.
bool shows(const Example& example, std::string_view name);

}  // namespace forgeyard::console
