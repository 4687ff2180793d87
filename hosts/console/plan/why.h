#pragma once

#include <string>

#include "hosts/console/base/exit_code.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

class Session;

// Says of each component, or of the one or the file that is named, why the next build would or would not run
// a tool for it. Throws a Failure, also for a name that is neither.
ExitCode explain(Session& session, workbench::OpenProject& project, const std::string& name);

}  // namespace forgeyard::console
