#pragma once

#include "hosts/console/base/failure.h"
#include "hosts/console/project/open_project.h"
#include "typelib/builder.h"

namespace forgeyard::console {

// Lists what the task would run, a command a line, or for a clean what it would delete. ExitCode::BuildErrors
// when a component's problems would keep it from running. Throws a Failure.
ExitCode dryRun(OpenProject& project, e_task task);

}  // namespace forgeyard::console
