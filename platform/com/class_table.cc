#include "platform/com/class_table.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace forgeyard {

namespace {

std::vector<GetClassObject>& sources() {
  static std::vector<GetClassObject> list;
  return list;
}

// A module that is loaded when its class is first asked for.
struct ClassModule {
  Guid clsid;
  std::string path;
  GetClassObject source = nullptr;
  std::string error = {};
};

std::vector<ClassModule>& classModules() {
  static std::vector<ClassModule> list;
  return list;
}

ClassModule* findClassModule(const Guid& clsid) {
  const auto found = std::find_if(classModules().begin(), classModules().end(),
                                  [&](const ClassModule& module) { return module.clsid == clsid; });
  return found == classModules().end() ? nullptr : &*found;
}

HRESULT load(ClassModule& module) {
  if (module.source) return S_OK;
  module.error.clear();
  if (::access(module.path.c_str(), F_OK) != 0) {
    module.error = module.path + " doesn't exist";
    return REGDB_E_CLASSNOTREG;
  }
  void* const library = ::dlopen(module.path.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const symbol = library ? ::dlsym(library, "DllGetClassObject") : nullptr;
  if (!symbol) {
    const char* const why = ::dlerror();
    module.error = module.path + " can't be loaded: " + (why ? why : "no reason given");
    return CO_E_DLLNOTFOUND;
  }
  module.source = reinterpret_cast<GetClassObject>(symbol);
  return S_OK;
}

}  // namespace

void addClassModule(const Guid& clsid, std::string path) {
  if (ClassModule* module = findClassModule(clsid)) {
    if (!module->source) module->path = std::move(path);
  } else {
    classModules().push_back({clsid, std::move(path)});
  }
}

std::string classModuleError(const Guid& clsid) {
  const ClassModule* module = findClassModule(clsid);
  return module ? module->error : "";
}

void addClassSource(GetClassObject source) {
  if (std::find(sources().begin(), sources().end(), source) == sources().end()) sources().push_back(source);
}

void removeClassSource(GetClassObject source) {
  std::erase(sources(), source);
}

HRESULT CoGetClassObject(const Guid& clsid, Ref<IClassFactory>* out) {
  *out = nullptr;
  HRESULT last = REGDB_E_CLASSNOTREG;
  for (const GetClassObject source : sources()) {
    void* factory = nullptr;
    const HRESULT status = source(clsid, IClassFactory::iid, &factory);
    if (succeeded(status)) {
      *out = Ref<IClassFactory>::adopt(static_cast<IClassFactory*>(factory));
      return status;
    }
    if (status != CLASS_E_CLASSNOTAVAILABLE) last = status;
  }
  if (ClassModule* module = findClassModule(clsid)) {
    if (const HRESULT status = load(*module); failed(status)) return status;
    void* factory = nullptr;
    const HRESULT status = module->source(clsid, IClassFactory::iid, &factory);
    *out = Ref<IClassFactory>::adopt(static_cast<IClassFactory*>(factory));
    return status;
  }
  return last;
}

HRESULT CoCreateInstance(const Guid& clsid, const Guid& iid, void** out) {
  *out = nullptr;
  Ref<IClassFactory> factory;
  if (const HRESULT status = CoGetClassObject(clsid, &factory); failed(status)) return status;
  return factory->CreateInstance(nullptr, iid, out);
}

}  // namespace forgeyard
