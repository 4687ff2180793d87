#pragma once

#include <string>
#include <vector>

namespace forgeyard::console {

// A word that may stand at the cursor.
struct Candidate {
  std::string text;  // the whole word, not quoted
  std::string help;
  bool open = false;  // goes on: "Output="
};
using Candidates = std::vector<Candidate>;

}  // namespace forgeyard::console
