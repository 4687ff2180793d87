#include "repository/exports.h"

#include <dlfcn.h>

#include "platform/com/class_entry.h"
#include "platform/com/class_table.h"
#include "platform/registry/registry.h"
#include "repository/database.h"

using namespace forgeyard;

namespace {

class DatabaseFactory final : public ComObject<IClassFactory> {
 public:
  HRESULT CreateInstance(IUnknown* outer, const Guid& iid, void** out) override {
    *out = nullptr;
    return outer ? CLASS_E_NOAGGREGATION : createObject<repository::Database>(iid, out);
  }
  HRESULT LockServer(bool lock) override {
    liveObjects.fetch_add(lock ? 1 : -1, std::memory_order_relaxed);
    return S_OK;
  }
};

std::string ownFile() {
  Dl_info info{};
  return ::dladdr(reinterpret_cast<const void*>(&DllCanUnloadNow), &info) != 0 && info.dli_fname
             ? info.dli_fname
             : "";
}

std::string braced(const Guid& id) {
  return "{" + formatGuid(id) + "}";
}

const std::string kRoot = R"(HKEY_CLASSES_ROOT\)";

std::string classKey() {
  return kRoot + R"(CLSID\)" + braced(CLSID_VSSDatabase);
}

template <class Change>
HRESULT changeRegistry(Change&& change) {
  return guard([&] {
    const auto error = Registry::update(Registry::defaultFile(), std::forward<Change>(change));
    return error ? E_FAIL : S_OK;
  });
}

}  // namespace

HRESULT DllCanUnloadNow() {
  return liveObjects.load() == 0 ? S_OK : S_FALSE;
}

HRESULT DllGetClassObject(const Guid& clsid, const Guid& iid, void** out) {
  *out = nullptr;
  if (clsid != CLSID_VSSDatabase) return CLASS_E_CLASSNOTAVAILABLE;
  return guard([&] { return make<DatabaseFactory>()->QueryInterface(iid, out); });
}

HRESULT DllRegisterServer() {
  return changeRegistry([](Registry& registry) {
    registry.setValue(kRoot + "KV.VSSDatabase.1", "", "VSSDatabase Class");
    registry.setValue(kRoot + R"(KV.VSSDatabase.1\CLSID)", "", braced(CLSID_VSSDatabase));
    registry.setValue(kRoot + "KV.VSSDatabase", "", "VSSDatabase Class");
    registry.setValue(kRoot + R"(KV.VSSDatabase\CurVer)", "", "KV.VSSDatabase.1");
    registry.setValue(kRoot + R"(KV.VSSDatabase\CLSID)", "", braced(CLSID_VSSDatabase));
    registry.setValue(classKey(), "", "VSSDatabase Class");
    registry.setValue(classKey() + R"(\ProgID)", "", "KV.VSSDatabase.1");
    registry.setValue(classKey() + R"(\VersionIndependentProgID)", "", "KV.VSSDatabase");
    registry.setValue(classKey() + R"(\InprocServer32)", "", ownFile());
    registry.setValue(classKey() + R"(\InprocServer32)", "ThreadingModel", "Apartment");
  });
}

HRESULT DllUnregisterServer() {
  return changeRegistry([](Registry& registry) {
    for (const std::string& key : {kRoot + "KV.VSSDatabase.1", kRoot + "KV.VSSDatabase", classKey()})
      registry.removeKey(key);
  });
}
