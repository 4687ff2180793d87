#pragma once

#include <string>
#include <vector>

#include "hosts/console/usage/typed_line.h"

namespace forgeyard::console {

// What may stand at the cursor.
struct Candidate {
  std::string text;  // the whole word, not quoted
  std::string help;
  bool open = false;  // goes on: "Output="
};

struct Completion {
  std::vector<Candidate> candidates;
  // Or names of files, which shells know better.
  enum class Files : std::uint8_t { None, Any, Projects, Directories } files = Files::None;
};

// Nothing is loaded, locked, made or written. Throws what the reading of a project throws.
Completion complete(const TypedLine& line);

}  // namespace forgeyard::console
