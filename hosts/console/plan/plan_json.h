#pragma once

#include "hosts/console/services/line_writer.h"
#include "workbench/plan/project_status.h"
#include "workbench/project/project_paths.h"

namespace forgeyard::console {

// The objects of plans under --json; docs/output.md lists their fields.
void writeFolder(LineWriter& out, const workbench::FolderStatus& folder,
                 const workbench::ProjectPaths& paths);
void writeComponent(LineWriter& out, const workbench::ComponentPlan& entry,
                    const workbench::ProjectPaths& paths);
void writeRun(LineWriter& out, const workbench::Component& component, const PlannedRun& run,
              const workbench::ProjectPaths& paths);

}  // namespace forgeyard::console
