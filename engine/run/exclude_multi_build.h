#pragma once

#include "typelib/host.h"

namespace forgeyard {

// Name of the mutex that all hosts of a user share, beside kStopEvent: held by the one tool that may run at a
// time.
inline constexpr const char* kExcludeMultiBuild = "ExcludeMultiBuild";

}  // namespace forgeyard
