#pragma once

#include <string>
#include <vector>

#include "adapters/common/host_spelling.h"

namespace forgeyard {

// A command of the assembler component, taken apart. Paths are host paths.
struct AssemblerCommand {
  std::string program;
  std::vector<std::string> options;  // those of the GNU assembler
  bool keepLocals = false;           // /g
  bool keepEquates = false;          // /w
  bool keepConditionals = false;     // /c
  bool expandMacros = false;         // /m
  std::string source;
  std::string object;
  std::string symbols;  // empty: not wanted
  std::string listing;  // likewise
  std::string error;    // what is wrong with the command; the rest is then not to be used
};

// `words` is what stands behind the adapter's own name: the assembler, options of its own, the component's
// switches, SOURCE,OBJECT[,SYMBOLS[,LISTING]].
AssemblerCommand readAssemblerCommand(const std::vector<std::string>& words, HostSpelling& spelling);

// The assembler's whole command line.
std::vector<std::string> assemblerArguments(const AssemblerCommand& command);

}  // namespace forgeyard
