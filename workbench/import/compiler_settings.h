#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "workbench/import/compilation_database.h"
#include "workbench/import/notes.h"
#include "workbench/project/properties.h"

namespace forgeyard::workbench {

// A compiler's command line as settings of a compiler component.
struct CompilerSettings {
  std::string compiler;              // the program, behind launchers like ccache
  std::vector<Assignment> settings;  // in an order of their own, so that equal ones compare equal
  std::vector<std::string> link;     // those that the link of the objects needs too
};

// Takes the command apart. `settingPath` spells an absolute host path as settings have it. What can't be
// expressed is noted, and left out.
CompilerSettings readCompilerOptions(const CompileCommand& command,
                                     const std::function<std::string(const std::string&)>& settingPath,
                                     Notes& notes);

}  // namespace forgeyard::workbench
