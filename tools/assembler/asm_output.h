#pragma once

#include "typelib/settings.h"

namespace forgeyard {

// Writes Output of an assembler as it follows from the two flags that ask for further files. Throws
// StatusError.
void updateAssemblerOutput(IAsmSettings& settings);

}  // namespace forgeyard
