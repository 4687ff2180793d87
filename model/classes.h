#pragma once

#include <span>

#include "platform/com/class_entry.h"

namespace forgeyard {

// The classes of the project model, for the module's object map.
std::span<const ClassEntry> modelClasses();

}  // namespace forgeyard
