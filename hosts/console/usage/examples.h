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

}  // namespace forgeyard::console
