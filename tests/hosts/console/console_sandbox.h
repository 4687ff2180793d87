#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/e2e/sandbox.h"

namespace forgeyard::console {

using e2e::Lines;
using e2e::Outcome;

// A user with the project file "p.nqp": folders "src" (for "c") and "inc" (for "h"), a compiler "cc" fed by
// "src", a command line "link" fed by the compiler, configurations "Default" (active) and "Small".
class ConsoleSandbox : public e2e::Sandbox {
 protected:
  void makeProject() const;

  // All files of the user with their times: what must not change.
  std::map<std::string, std::filesystem::file_time_type> everything() const;

  // What a command line that is to fail says; fails the test unless it ends with 2, writes nothing to
  // standard output and leaves the project file as it is.
  std::string refused(Lines arguments) const;
  // The output of one that is to succeed.
  std::string shown(Lines arguments) const { return must(std::move(arguments)).output; }
};

// A wrong use and the words that its message must have in it.
struct Refusal {
  Lines arguments;
  std::string words;
};

}  // namespace forgeyard::console
