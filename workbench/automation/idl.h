#pragma once

#include <string>
#include <vector>

#include "platform/com/type_info.h"

namespace forgeyard::workbench {

// Interfaces as interface definition language, a member's help beside its identifier. One text is one line.
std::vector<std::string> interfaceLines(const TypeInfo& type);
// All of the type library, in its order.
std::vector<std::string> libraryLines();

}  // namespace forgeyard::workbench
