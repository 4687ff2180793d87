#include "plugin/class_object.h"

#include "platform/threads/thread.h"
#include "plugin/object_map.h"

namespace forgeyard {

namespace {

class ClassFactory final : public ComObject<IClassFactory> {
 public:
  explicit ClassFactory(const ClassEntry& entry) : entry_(entry) {}

  HRESULT CreateInstance(IUnknown* outer, const Guid& iid, void** out) override {
    *out = nullptr;
    return outer ? CLASS_E_NOAGGREGATION : entry_.create(iid, out);
  }
  // A lock counts like an object.
  HRESULT LockServer(bool lock) override {
    liveObjects.fetch_add(lock ? 1 : -1, std::memory_order_relaxed);
    return S_OK;
  }

 private:
  const ClassEntry& entry_;
};

}  // namespace

HRESULT classObject(const Guid& clsid, const Guid& iid, void** out) {
  *out = nullptr;
  return guard([&] {
    const ClassEntry* entry = findClass(clsid);
    return entry ? make<ClassFactory>(*entry)->QueryInterface(iid, out) : CLASS_E_CLASSNOTAVAILABLE;
  });
}

bool canUnload() {
  return liveObjects.load() == 0 && Thread::running() == 0;
}

}  // namespace forgeyard
