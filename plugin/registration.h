#pragma once

#include <string>

#include "platform/com/status.h"

namespace forgeyard {

// Enters the module's classes, with their categories, and its type library into the user's registry as served
// by the module at `modulePath`, a host path; what an older version said of these classes goes. Taking them
// out again leaves the type library. Classes of others stay as they are. Each is one change of the registry
// file; fails with the status of that file.
HRESULT registerClasses(const std::string& modulePath);
HRESULT unregisterClasses();

}  // namespace forgeyard
