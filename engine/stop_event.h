#pragma once

#include "typelib/host.h"

namespace forgeyard {

// Name of the mutex that all hosts of a user share, beside STOP_EVENT: held by the one tool that may run at a
// time.
inline constexpr const char* EXCLUDE_MULTI_BUILD = "ExcludeMultiBuild";

}  // namespace forgeyard
