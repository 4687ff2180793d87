#include "tests/plugin/loaded_module.h"

#include <dlfcn.h>

#include <stdexcept>

#include "tests/support/places.h"

namespace forgeyard::test {

std::string modulePath() {
  return places::programs() + "/Forgeyard.so";
}

LoadedModule::LoadedModule(const std::string& path) : library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!library_) throw std::runtime_error(dlerror());
  canUnloadNow_ = reinterpret_cast<HRESULT (*)()>(symbol("DllCanUnloadNow"));
  registerServer_ = reinterpret_cast<HRESULT (*)()>(symbol("DllRegisterServer"));
  unregisterServer_ = reinterpret_cast<HRESULT (*)()>(symbol("DllUnregisterServer"));
  getClassObject_ = reinterpret_cast<GetClassObject>(symbol("DllGetClassObject"));
}

void* LoadedModule::symbol(const char* name) const {
  void* address = dlsym(library_, name);
  if (!address) throw std::runtime_error(dlerror());
  return address;
}

void LoadedModule::unload() {
  if (library_) dlclose(library_);
  library_ = nullptr;
}

Ref<IClassFactory> LoadedModule::factory(const Guid& clsid, HRESULT* status) const {
  void* out = nullptr;
  const HRESULT got = getClassObject_(clsid, IClassFactory::iid, &out);
  if (status) *status = got;
  return Ref<IClassFactory>::adopt(static_cast<IClassFactory*>(out));
}

Ref<IUnknown> LoadedModule::create(const Guid& clsid, HRESULT* status) const {
  const Ref<IClassFactory> classObject = factory(clsid, status);
  if (!classObject) return nullptr;
  void* out = nullptr;
  const HRESULT made = classObject->CreateInstance(nullptr, IUnknown::iid, &out);
  if (status) *status = made;
  return Ref<IUnknown>::adopt(static_cast<IUnknown*>(out));
}

}  // namespace forgeyard::test
