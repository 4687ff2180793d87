#pragma once

#include "platform/com/guid.h"
#include "platform/com/status.h"

// What the host asks the module for by name. Main thread only.
extern "C" {

// S_OK when no object of the module lives and nobody has locked it, else S_FALSE.
[[gnu::visibility("default")]] forgeyard::HRESULT DllCanUnloadNow();

// The class object of one of the module's classes.
[[gnu::visibility("default")]] forgeyard::HRESULT DllGetClassObject(const forgeyard::Guid& clsid,
                                                                    const forgeyard::Guid& iid, void** out);

// Enters every class into the user's registry, with the module's own path, or takes them out again.
[[gnu::visibility("default")]] forgeyard::HRESULT DllRegisterServer();
[[gnu::visibility("default")]] forgeyard::HRESULT DllUnregisterServer();
}
