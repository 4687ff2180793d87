#pragma once

#include "platform/com/class_table.h"

namespace forgeyard {

// The class object of a class that the module serves; CLASS_E_CLASSNOTAVAILABLE for any other. It counts as
// an object of the module, so that nobody is left with a class object of a module that has gone.
HRESULT classObject(const Guid& clsid, const Guid& iid, void** out);

// Whether neither objects nor locks nor running threads need the module's code.
bool canUnload();

}  // namespace forgeyard
