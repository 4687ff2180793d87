#pragma once

#include <string>
#include <vector>

#include "adapters/linker/link_command.h"
#include "adapters/linker/linker_tools.h"

namespace forgeyard {

using Words = std::vector<std::string>;

inline void append(Words& words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
}

// What the linker reads and writes for a command, which its own words don't say.
struct LinkerInputs {
  std::vector<std::string> searched;  // for inputs without a directory, in order
  std::string layout;                 // in place of the linker's own; empty: none
  std::string script;
  bool scriptHasSections = false;
  std::string linked;  // what the linker is to write
};

// Whether something is done to what the linker wrote; else that is the output.
bool isConverted(const LinkCommand& command);

// The linker's whole command line.
Words linkerArguments(const LinkCommand& command, const LinkerTools& tools, const LinkerInputs& inputs);
// The whole command line that makes the output of what was linked.
Words conversionArguments(const LinkCommand& command, const LinkerTools& tools, const std::string& linked,
                          const std::string& output);

}  // namespace forgeyard
