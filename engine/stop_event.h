#pragma once

namespace forgeyard {

// Names of the objects that all hosts of a user share: the manual-reset event that ends waiting and running
// tools, and the mutex of the one tool that may run at a time.
inline constexpr const char* STOP_EVENT = "StopEvent";
inline constexpr const char* EXCLUDE_MULTI_BUILD = "ExcludeMultiBuild";

}  // namespace forgeyard
