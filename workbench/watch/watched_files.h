#pragma once

#include "workbench/plan/build_plan.h"
#include "workbench/project/open_project.h"
#include "workbench/watch/file_states.h"

namespace forgeyard::workbench {

// Host paths of the files in folders, and of all that goes into something without being made by the build.
// Throws a Failure.
FileStates::Paths watchedFiles(OpenProject& project, const ProjectPlan& plan);

}  // namespace forgeyard::workbench
