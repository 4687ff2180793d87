#pragma once

#include <string>
#include <vector>

#include "workbench/import/notes.h"
#include "workbench/project/properties.h"

namespace forgeyard::workbench {

struct PlannedFolder {
  std::string name;
  std::string filter;              // "c;h"
  std::vector<std::string> files;  // host paths, absolute
};

struct PlannedTool {
  std::string kind;  // "cc"
  std::string name;
  std::vector<Assignment> settings;
  std::vector<std::string> inputs;  // the names of the components that feed it
};

// A whole project before any of it is made. Names of components are unlike each other.
struct ImportPlan {
  std::string name;
  std::vector<Assignment> configuration;
  std::vector<PlannedFolder> folders;
  std::vector<PlannedTool> tools;  // each behind those that feed it
};

}  // namespace forgeyard::workbench
