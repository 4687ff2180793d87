#pragma once

#include <string>

namespace forgeyard::workbench {

// What the user has chosen to work on. Host paths as the user typed them.
struct Selection {
  std::string project;        // empty: see chosenProjectFile()
  std::string workspace;      // empty: the user's own
  std::string configuration;  // for this session only; empty: the active one
};

}  // namespace forgeyard::workbench
