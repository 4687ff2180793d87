#pragma once

#include "platform/text/bstring.h"
#include "typelib/settings.h"

namespace forgeyard {

// The command of a compiler for one file, with its macros unexpanded. `compiler` begins the line unchanged;
// `reportDependencies` has the compiler write a dependency file.
BString compilerCommand(ICcSettings& settings, const BString& compiler, bool reportDependencies);

}  // namespace forgeyard
