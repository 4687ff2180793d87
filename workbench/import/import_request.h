#pragma once

#include <string>

#include "platform/registry/registry.h"
#include "workbench/import/project_layout.h"
#include "workbench/project/project_file.h"

namespace forgeyard::workbench {

// What the user asked an import for, with paths made absolute.
struct ImportRequest {
  ProjectFile project;    // the file to make
  std::string directory;  // of the sources: host path, spelled like the project's
  std::string database;   // a compilation database; may be empty
  std::string target;     // empty: the one of this machine
  std::string main;       // the source whose function main counts; empty: all do
  std::string script;     // a linker script; may be empty
  FolderMode folders = FolderMode::ByDirectory;

  // The project's own directory.
  std::string projectDirectory() const;
  // A path as settings have it: from the project's directory for what lies in that or in the directory of the
  // sources and for what the project lies in, absolute otherwise. Throws a Failure for one that can't be
  // spelled.
  std::string settingPath(const std::string& hostPath) const;
};

// The targets of the registry may have `request.target` or not; this one has a compiler. Throws a Failure if
// the one that is asked for is missing.
std::string chosenTarget(const Registry& registry, const std::string& wanted);

// What links the objects of the target's compiler.
LinkTools linkToolsOf(const Registry& registry, const std::string& target);

}  // namespace forgeyard::workbench
