#include "platform/com/class_table.h"

#include <algorithm>
#include <vector>

namespace forgeyard {

namespace {

std::vector<GetClassObject>& sources() {
  static std::vector<GetClassObject> list;
  return list;
}

}  // namespace

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
  return last;
}

HRESULT CoCreateInstance(const Guid& clsid, const Guid& iid, void** out) {
  *out = nullptr;
  Ref<IClassFactory> factory;
  if (const HRESULT status = CoGetClassObject(clsid, &factory); failed(status)) return status;
  return factory->CreateInstance(nullptr, iid, out);
}

}  // namespace forgeyard
