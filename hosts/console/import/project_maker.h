#pragma once

#include "hosts/console/import/import_plan.h"
#include "hosts/console/project/open_project.h"

namespace forgeyard::console {

// Makes what the plan holds in a project that is new. Throws a Failure; nothing is stored.
void makePlanned(OpenProject& project, const ImportPlan& plan);

}  // namespace forgeyard::console
