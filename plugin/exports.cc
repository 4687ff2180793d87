#include "plugin/exports.h"

#include "engine/self_documentation/module_path.h"
#include "plugin/class_object.h"
#include "plugin/registration.h"

using namespace forgeyard;

HRESULT DllCanUnloadNow() {
  return canUnload() ? S_OK : S_FALSE;
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
