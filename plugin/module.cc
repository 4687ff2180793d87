#include "plugin/module.h"

#include <algorithm>

#include "engine/classes.h"
#include "model/classes.h"
#include "tools/classes.h"

namespace forgeyard {

namespace {

class ClassFactory final : public ComObject<IClassFactory> {
 public:
  explicit ClassFactory(const ClassEntry& entry) : entry_(entry) {}

  HRESULT CreateInstance(IUnknown* outer, const Guid& iid, void** out) override {
    *out = nullptr;
    return outer ? CLASS_E_NOAGGREGATION : entry_.create(iid, out);
  }
  HRESULT LockServer(bool lock) override {
    liveObjects.fetch_add(lock ? 1 : -1, std::memory_order_relaxed);
    return S_OK;
  }

 private:
  const ClassEntry& entry_;
};

}  // namespace

const std::vector<ClassEntry>& objectMap() {
  static const std::vector<ClassEntry> map = [] {
    std::vector<ClassEntry> merged;
    for (const auto classes : {engineClasses(), modelClasses(), toolClasses()}) {
      merged.insert(merged.end(), classes.begin(), classes.end());
    }
    return merged;
  }();
  return map;
}

HRESULT classObject(const Guid& clsid, const Guid& iid, void** out) {
  *out = nullptr;
  const auto& map = objectMap();
  const auto found =
      std::find_if(map.begin(), map.end(), [&](const ClassEntry& e) { return e.clsid == clsid; });
  if (found == map.end()) return CLASS_E_CLASSNOTAVAILABLE;
  return guard([&] { return make<ClassFactory>(*found)->QueryInterface(iid, out); });
}

}  // namespace forgeyard
