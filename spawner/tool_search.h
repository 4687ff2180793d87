#pragma once

#include "spawner/text_buffer.h"

namespace forgeyard {

enum class Found { Nowhere, OwnDirectory, Path, NotExecutable };

// The directory of the running program, without a slash at its end; empty if the kernel doesn't tell.
void ownDirectory(PathBuffer& directory) noexcept;

// Looks for a program named without a directory: first in `ownDirectory`, then along PATH. `file` gets where
// it was found, for NotExecutable where one of that name lies that is no program.
Found findTool(const char* name, const char* ownDirectory, const char* const* environment,
               PathBuffer& file) noexcept;

}  // namespace forgeyard
