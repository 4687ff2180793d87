#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "adapters/common/host_spelling.h"

namespace forgeyard {

// A command for a compiler driver with its paths in the model's spelling, turned into one that the driver
// understands.
struct CompilerCommand {
  std::vector<std::string> arguments;  // the driver first; what asks for dependencies is as it was given
  std::vector<std::string> sources;    // the files to compile, as the command spells them
  std::string output;                  // host path; empty if the command names none
  bool wantsDependencies = false;      // -MD
  bool namesTarget = false;            // -MT or -MQ
  std::string dependencyOutput;        // host path that -MF names
};

// `words` is what follows the adapter's own name: the driver, with launchers like ccache before it or not,
// and its arguments. Options are those of the GNU compiler driver: paths of the options that take one, and
// input files, are respelled; response files are replaced by their words; everything else is handed on word
// for word.
CompilerCommand readCompilerCommand(const std::vector<std::string>& words, HostSpelling& spelling);

}  // namespace forgeyard
