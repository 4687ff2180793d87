#pragma once

#include "hosts/console/base/exit_code.h"
#include "hosts/console/base/options.h"

namespace forgeyard::console {

// Builds the project that the options name, and again each time a source, a file that one is known to depend
// on, or the project has changed, until the user says stop. Changes that come together are one; without one
// nothing is written. Between builds the project is free for other commands. Ends as well when nobody reads
// standard output any more. Throws a Failure when the first build can't be begun.
ExitCode watchProject(const Options& options);

}  // namespace forgeyard::console
