#pragma once

#include <vector>

#include "platform/com/class_entry.h"
#include "platform/com/class_table.h"

namespace forgeyard {

// The module's classes, merged into one map at load: the project and workspace side, then the tools.
const std::vector<ClassEntry>& objectMap();

// The class object of an entry in the map; CLASS_E_CLASSNOTAVAILABLE for any other class.
HRESULT classObject(const Guid& clsid, const Guid& iid, void** out);

}  // namespace forgeyard
