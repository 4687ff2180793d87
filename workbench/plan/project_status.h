#pragma once

#include <string>
#include <vector>

#include "workbench/plan/build_plan.h"
#include "workbench/project/open_project.h"
#include "workbench/project/source_files.h"

namespace forgeyard::workbench {

// A program that a component's commands need and that isn't there.
struct MissingTool {
  std::string component;
  std::string text;  // which, and where it was looked for; no full stop
};

// A folder, and whether it feeds its files to what is connected in that configuration.
struct FolderStatus {
  FolderContents contents;
  bool enabled = true;
};

// A project at a glance.
struct ProjectStatus {
  std::string name;
  std::string configuration;
  std::string target;       // may be empty
  bool incomplete = false;  // a part of the file could not be read
  bool unsaved = false;
  std::vector<FolderStatus> folders;
  ProjectPlan plan;
  std::vector<MissingTool> missing;
};

// In the configuration that is selected. Runs nothing and stores nothing. Throws a Failure.
ProjectStatus statusOf(OpenProject& project);

}  // namespace forgeyard::workbench
