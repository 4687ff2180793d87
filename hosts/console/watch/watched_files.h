#pragma once

#include "hosts/console/plan/build_plan.h"
#include "hosts/console/project/open_project.h"
#include "hosts/console/watch/file_states.h"

namespace forgeyard::console {

// Host paths of the files in folders, and of all that goes into something without being made by the build.
// Throws a Failure.
FileStates::Paths watchedFiles(OpenProject& project, const ProjectPlan& plan);

}  // namespace forgeyard::console
