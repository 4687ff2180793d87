#pragma once

#include "adapters/common/diagnostics.h"
#include "adapters/common/host_spelling.h"
#include "adapters/linker/link_command.h"
#include "adapters/linker/linker_tools.h"

namespace forgeyard {

// Links, and gives the exit code: that of the tool that failed, 128 + n for signal n, 1 for a fault in the
// script. On failure none of the outputs stays.
int link(const LinkCommand& command, const LinkerTools& tools, HostSpelling& spelling,
         const Diagnostics& diagnostics);

// The linker's own layout, as `ld --verbose` shows it, without the line that would set _gp whatever the
// command says; empty if there is no layout in the text.
std::string layoutWithoutGlobalPointer(std::string_view verbose);

}  // namespace forgeyard
