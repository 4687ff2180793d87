#pragma once

#include <string_view>

#include "hosts/console/base/failure.h"
#include "hosts/console/project/open_project.h"

namespace forgeyard::console {

// Runs one of the build tool's commands on the project, in the configuration that the options name, to the
// end of its build run, and then stores what the run has learnt; the configuration that is active in the file
// stays so.
//
// Ctrl-C (and SIGTERM, SIGHUP) stops the run in order, a second one ends the tools at once, a third one the
// program. So does a standard output that nobody reads any more. Throws a Failure when the run could not
// start.
ExitCode runBuild(OpenProject& project, std::u16string_view command);

}  // namespace forgeyard::console
