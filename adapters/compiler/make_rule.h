#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {

// What the compiler driver says in a dependency file, in the notation of make.
struct MakeRule {
  // Of the first rule, in order, with the notation undone; the source file is the first of them.
  std::vector<std::string> prerequisites;
  // False if there is text that can't be understood, as when a name has a line end in it: then some names may
  // be missing.
  bool complete = false;
};

// Any bytes are taken. Rules without prerequisites behind the first one are what `-MP` adds, and say nothing.
MakeRule readMakeRule(std::string_view text);

}  // namespace forgeyard
