#pragma once

#include <span>
#include <vector>

#include "platform/com/class_entry.h"

namespace forgeyard {

// The module's classes, merged at load from its two halves: the project and workspace side, then the
// compiler, assembler and linker side, then an empty end entry. Classes that aren't built yet have an entry
// whose creator answers E_NOTIMPL. A class may stand there twice; the first entry serves it.
const std::vector<ClassEntry>& objectMap();

// Entries of the halves, in their order.
inline constexpr std::size_t kProjectSideClasses = 24;
inline constexpr std::size_t kToolSideClasses = 18;

// Classes of the hosts' common library, which no host brings along here: served behind the map.
std::span<const ClassEntry> hostLibraryClasses();

// The entry that serves a class; null when none does.
const ClassEntry* findClass(const Guid& clsid);

}  // namespace forgeyard
