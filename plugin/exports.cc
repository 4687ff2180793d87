#include "plugin/exports.h"

#include "plugin/module.h"
#include "plugin/registration.h"

using namespace forgeyard;

HRESULT DllCanUnloadNow() {
  return liveObjects.load() == 0 ? S_OK : S_FALSE;
}

HRESULT DllGetClassObject(const Guid& clsid, const Guid& iid, void** out) {
  return classObject(clsid, iid, out);
}

HRESULT DllRegisterServer() {
  return registerClasses(modulePath());
}

HRESULT DllUnregisterServer() {
  return unregisterClasses();
}
