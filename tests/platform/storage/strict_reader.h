#pragma once

#include <string>
#include <vector>

#include "tests/platform/storage/storage_testing.h"

namespace forgeyard {

// A second reader of the format, which shares no code with the first and forgives nothing: every sector
// accounted for once, exact chains and counts, ordered and balanced red-black trees, blank unused entries.
// For small files.
struct StrictReading {
  Contents contents;                    // as contentsOf() gives them
  std::vector<std::string> complaints;  // empty for a file that is right in every field
};

StrictReading readStrictly(const std::string& file);

}  // namespace forgeyard
