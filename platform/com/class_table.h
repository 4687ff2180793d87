#pragma once

#include <string>

#include "platform/com/guid.h"
#include "platform/com/ref.h"

namespace forgeyard {

struct IClassFactory : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("00000001-0000-0000-C000-000000000046");

  // CLASS_E_NOAGGREGATION when an outer object is given.
  virtual HRESULT CreateInstance(IUnknown* outer, const Guid& iid, void** out) = 0;
  virtual HRESULT LockServer(bool lock) = 0;
};

// A module's export: its class object for a class identifier.
using GetClassObject = HRESULT (*)(const Guid& clsid, const Guid& iid, void** out);

// Modules that serve classes in this process, asked in the order in which they were added. The host adds a
// module when it has loaded it; a module adds itself to nothing. Apartment thread only.
void addClassSource(GetClassObject source);
void removeClassSource(GetClassObject source);

// Serves one class from a module that is loaded, from `path` on this system, when the class is first asked
// for, and stays loaded. A file that doesn't exist leaves the class unregistered; one that can't be loaded
// fails with CO_E_DLLNOTFOUND. A second call for a class replaces its path until then. Apartment thread only.
void addClassModule(const Guid& clsid, std::string path);
// Why the module of a class could not be loaded; empty if it was, or was never tried.
std::string classModuleError(const Guid& clsid);

// The class object, REGDB_E_CLASSNOTREG when no module in the process serves the class.
HRESULT CoGetClassObject(const Guid& clsid, Ref<IClassFactory>* out);

HRESULT CoCreateInstance(const Guid& clsid, const Guid& iid, void** out);

// A new object of the class through its interface I; null when it can't be made.
template <class I>
Ref<I> createInstance(const Guid& clsid) {
  void* object = nullptr;
  if (failed(CoCreateInstance(clsid, I::iid, &object))) return nullptr;
  return Ref<I>::adopt(static_cast<I*>(object));
}

}  // namespace forgeyard
