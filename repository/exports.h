#pragma once

#include "platform/com/guid.h"
#include "platform/com/status.h"

// What hosts ask this module for by name. Apartment thread only.
extern "C" {

// S_OK when no object of the module is alive, else S_FALSE. The library stays mapped in any case.
[[gnu::visibility("default")]] forgeyard::HRESULT DllCanUnloadNow();

// The class object of VSSDatabase.
[[gnu::visibility("default")]] forgeyard::HRESULT DllGetClassObject(const forgeyard::Guid& clsid,
                                                                    const forgeyard::Guid& iid, void** out);

// Enters the class into the user's registry, with the module's own path, or removes it.
[[gnu::visibility("default")]] forgeyard::HRESULT DllRegisterServer();
[[gnu::visibility("default")]] forgeyard::HRESULT DllUnregisterServer();
}
