#pragma once

#include <span>

#include "platform/com/class_entry.h"

namespace forgeyard {

// The tool components and their settings, for the module's object map.
std::span<const ClassEntry> toolClasses();

}  // namespace forgeyard
