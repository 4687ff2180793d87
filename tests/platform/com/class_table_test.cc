#include "platform/com/class_table.h"

#include "platform/com/class_entry.h"
#include "tests/platform/com/live_objects.h"

namespace forgeyard {
namespace {

constexpr Guid kFirst = guid("A3000001-0000-0000-0000-000000000000");
constexpr Guid kBoth = guid("A3000002-0000-0000-0000-000000000000");
constexpr Guid kBroken = guid("A3000003-0000-0000-0000-000000000000");

struct IOrigin : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("A3000010-0000-0000-0000-000000000000");
  virtual int origin() = 0;
};

template <int Number>
class Made final : public ComObject<IOrigin> {
 public:
  int origin() override { return Number; }
};

template <int Number>
class Factory final : public ComObject<IClassFactory> {
 public:
  HRESULT CreateInstance(IUnknown*, const Guid& iid, void** out) override {
    return createObject<Made<Number>>(iid, out);
  }
  HRESULT LockServer(bool) override { return S_OK; }
};

HRESULT firstModule(const Guid& clsid, const Guid& iid, void** out) {
  *out = nullptr;
  if (clsid == kBroken) return E_OUTOFMEMORY;
  if (clsid != kFirst && clsid != kBoth) return CLASS_E_CLASSNOTAVAILABLE;
  return make<Factory<1>>()->QueryInterface(iid, out);
}

HRESULT secondModule(const Guid& clsid, const Guid& iid, void** out) {
  *out = nullptr;
  if (clsid != kBoth) return CLASS_E_CLASSNOTAVAILABLE;
  return make<Factory<2>>()->QueryInterface(iid, out);
}

class ClassTable : public NoObjectLeft {
 protected:
  ClassTable() {
    addClassSource(firstModule);
    addClassSource(secondModule);
    addClassSource(firstModule);
  }
  ~ClassTable() override {
    removeClassSource(firstModule);
    removeClassSource(secondModule);
  }
};

int originOf(const Guid& clsid) {
  const Ref<IOrigin> object = createInstance<IOrigin>(clsid);
  return object ? object->origin() : 0;
}

TEST_F(ClassTable, MakesObjectsOfTheFirstModuleThatServesTheClass) {
  EXPECT_EQ(originOf(kFirst), 1);
  EXPECT_EQ(originOf(kBoth), 1);
}

TEST_F(ClassTable, ForgetsAModuleThatIsTakenOut) {
  removeClassSource(firstModule);
  EXPECT_EQ(originOf(kFirst), 0);
  EXPECT_EQ(originOf(kBoth), 2);
}

TEST_F(ClassTable, TellsWhyAnObjectCannotBeMade) {
  void* out = this;
  EXPECT_EQ(CoCreateInstance(GUID_NULL, IOrigin::iid, &out), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(out, nullptr);
  out = this;
  EXPECT_EQ(CoCreateInstance(kFirst, IClassFactory::iid, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(CoCreateInstance(kBroken, IOrigin::iid, &out), E_OUTOFMEMORY);
}

}  // namespace
}  // namespace forgeyard
