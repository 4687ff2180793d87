#pragma once

#include "hosts/console/plan/build_plan.h"
#include "hosts/console/project/project_paths.h"
#include "hosts/console/project/source_files.h"

namespace forgeyard::console {

// The objects of plans under --json; docs/output.md lists their fields.
void writeFolder(LineWriter& out, const FolderContents& folder, const ProjectPaths& paths);
void writeComponent(LineWriter& out, const ComponentPlan& entry, const ProjectPaths& paths);
void writeRun(LineWriter& out, const Component& component, const PlannedRun& run, const ProjectPaths& paths);

}  // namespace forgeyard::console
