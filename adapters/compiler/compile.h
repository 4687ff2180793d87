#pragma once

#include "adapters/common/diagnostics.h"
#include "adapters/common/host_spelling.h"
#include "adapters/compiler/compiler_command.h"

namespace forgeyard {

// Runs the driver and gives the exit code: its own, 128 + n for signal n. Where the command asks for
// dependencies, the dependency file is laid beside the source once the driver has succeeded; an old one is
// gone before it starts, so that the file is there only if it is true. Where it doesn't, this process becomes
// the driver.
int compile(CompilerCommand command, HostSpelling& spelling, const Diagnostics& diagnostics);

}  // namespace forgeyard
