#pragma once

#include <string>

#include "adapters/common/host_spelling.h"

namespace forgeyard {

// Where a command's program lies.
struct FoundTool {
  std::string file;  // host path; empty if it can't be started
  bool besideSpawner = false;
  std::string problem;  // why it can't
  int exitCode = 0;     // what to say to our caller then
};

// `program` as the command names it: with a directory, in the model's or the host's spelling, or without.
FoundTool findCommandTool(const std::string& program, HostSpelling& spelling, const char* const* environment);

// Whether the registry names the program among those whose arguments stay as they are.
bool wantsNativePaths(const std::string& file, UserRegistry& registry);

}  // namespace forgeyard
