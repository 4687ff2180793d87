#include "tests/support/class_source.h"

#include <algorithm>
#include <vector>

#include "platform/com/class_table.h"

namespace forgeyard::test {

namespace {

std::vector<std::span<const ClassEntry>> served;

class Factory final : public ComObject<IClassFactory> {
 public:
  explicit Factory(const ClassEntry& entry) : entry_(entry) {}

  HRESULT CreateInstance(IUnknown*, const Guid& iid, void** out) override { return entry_.create(iid, out); }
  HRESULT LockServer(bool) override { return S_OK; }

 private:
  const ClassEntry& entry_;
};

HRESULT classObject(const Guid& clsid, const Guid& iid, void** out) {
  *out = nullptr;
  for (const auto classes : served) {
    const auto found =
        std::find_if(classes.begin(), classes.end(), [&](const ClassEntry& e) { return e.clsid == clsid; });
    if (found != classes.end()) return make<Factory>(*found)->QueryInterface(iid, out);
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace

ClassSource::ClassSource(std::span<const ClassEntry> classes) : classes_(classes) {
  served.push_back(classes);
  addClassSource(&classObject);
}

ClassSource::~ClassSource() {
  std::erase_if(served, [this](const auto& classes) { return classes.data() == classes_.data(); });
  if (served.empty()) removeClassSource(&classObject);
}

}  // namespace forgeyard::test
