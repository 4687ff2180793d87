#pragma once

#include "hosts/console/base/exit_code.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

class Session;

// Shows the project at a glance: configuration and target, each component with what goes in, what comes out
// and how much of it is out of date, what is missing to build it, and what isn't stored. Throws a Failure.
ExitCode showStatus(Session& session, workbench::OpenProject& project);

}  // namespace forgeyard::console
