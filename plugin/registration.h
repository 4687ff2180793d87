#pragma once

#include <string>

#include "platform/com/status.h"

namespace forgeyard {

// Enters the classes of the object map into the user's registry as served by the module at `modulePath`, a
// host path, or takes them out again. Classes of others stay as they are.
HRESULT registerClasses(const std::string& modulePath);
HRESULT unregisterClasses();

// The host path of the binary that this code is in.
std::string modulePath();

}  // namespace forgeyard
