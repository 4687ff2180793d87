#pragma once

#include "workbench/import/import_plan.h"
#include "workbench/project/open_project.h"

namespace forgeyard::workbench {

// Makes what the plan holds in a project that is new. Throws a Failure; nothing is stored.
void makePlanned(OpenProject& project, const ImportPlan& plan);

}  // namespace forgeyard::workbench
