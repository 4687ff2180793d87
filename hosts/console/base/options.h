#pragma once

#include "workbench/session/selection.h"

namespace forgeyard::console {

// What may stand on every command line, before and behind the command.
struct Options : workbench::Selection {
  bool yes = false;  // answers questions with yes
  bool quiet = false;
  bool verbose = false;
  bool json = false;  // standard output is JSON lines: services/json_lines.h
};

}  // namespace forgeyard::console
