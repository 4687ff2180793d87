#pragma once

#include <cstdint>

#include "hosts/console/usage/candidate.h"
#include "hosts/console/usage/typed_line.h"

namespace forgeyard::console {

// What may stand at the cursor.
struct Completion {
  Candidates candidates;
  // Or names of files, which shells know better.
  enum class Files : std::uint8_t { None, Any, Projects, Directories } files = Files::None;
};

// Nothing is loaded, locked, made or written. Throws what the reading of a project throws.
Completion complete(const TypedLine& line);

}  // namespace forgeyard::console
