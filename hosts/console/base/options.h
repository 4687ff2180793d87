#pragma once

#include <string>

namespace forgeyard::console {

// What may stand on every command line, before and behind the command.
struct Options {
  std::string project;        // host path as typed; empty: see chosenProjectFile()
  std::string workspace;      // host path as typed; empty: the user's own
  std::string configuration;  // for this call only; empty: the active one
  bool yes = false;           // answers questions with yes
  bool quiet = false;
  bool verbose = false;
  bool json = false;  // standard output is JSON lines: services/json_lines.h
};

}  // namespace forgeyard::console
