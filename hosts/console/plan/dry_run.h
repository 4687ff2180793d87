#pragma once

#include "hosts/console/base/exit_code.h"
#include "typelib/builder.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

class Session;

// Lists what the task would run, a command a line, or for a clean what it would delete. ExitCode::BuildErrors
// when a component's problems would keep it from running. Throws a Failure.
ExitCode dryRun(Session& session, workbench::OpenProject& project, e_task task);

}  // namespace forgeyard::console
