#pragma once

#include "platform/text/bstring.h"
#include "typelib/settings.h"

namespace forgeyard {

// The command of an assembler for one file, with its macros unexpanded: switches, then the list of files.
// `assembler` begins the line unchanged.
BString assemblerCommand(IAsmSettings& settings, const BString& assembler);

}  // namespace forgeyard
