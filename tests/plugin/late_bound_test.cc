// Scripts call whatever they like: every member of every class, with nothing, with null and with nonsense.

#include <vector>

#include "tests/plugin/class_list.h"
#include "tests/plugin/loaded_module.h"
#include "typelib/host.h"
#include "typelib/type_library.h"

namespace forgeyard::test {
namespace {

class LateBound : public ModuleTest {
 protected:
  LateBound() {
    std::filesystem::current_path(scratch_.path());
    addClassSource(module_.classSource());
  }
  ~LateBound() override {
    removeClassSource(module_.classSource());
    std::filesystem::current_path(before_);
  }

 private:
  const std::filesystem::path before_ = std::filesystem::current_path();
};

template <class... Is>
std::vector<Ref<IDispatch>> facesOf(IUnknown* object, TypeList<Is...>) {
  std::vector<Ref<IDispatch>> faces;
  const auto add = [&](const Ref<IDispatch>& face) {
    if (face) faces.push_back(face);
  };
  (add(query<Is>(object)), ...);
  return faces;
}

using Arguments = std::vector<Variant>;

// The ways in which a member that takes `count` arguments is called.
std::vector<Arguments> waysToCall(std::size_t count) {
  return {Arguments{},
          Arguments(count, Variant::null()),
          Arguments(count, Variant()),
          Arguments(count, Variant(u"")),
          Arguments(count, Variant(-1)),
          Arguments(count, Variant(u"\\?*<\xD800"))};
}

// Objects that a call has given out are called as well, down to this depth.
constexpr int kDepth = 2;

void callEverything(IDispatch* face, int depth = 0);

void callInEveryWay(IDispatch* face, const Member& member, const Thunk& form, InvokeKind kind, int depth) {
  if (!form) return;
  std::size_t count = 0;
  for (const Param& param : form.params) count += param.out ? 0 : 1;
  Ref<IDispatch> given;
  for (const Arguments& arguments : waysToCall(count)) {
    Variant result;
    InvokeError error;
    const HRESULT status = face->Invoke(member.id, kind, arguments, &result, &error);
    EXPECT_NE(status, DISP_E_MEMBERNOTFOUND) << member.name;
    EXPECT_NE(status, DISP_E_BADPARAMCOUNT) << member.name;
    if (const auto* object = result.get<Ref<IDispatch>>()) given = *object;
  }
  if (given && depth < kDepth) callEverything(given.get(), depth + 1);
}

void callEverything(IDispatch* face, int depth) {
  const TypeInfo* type = nullptr;
  ASSERT_EQ(face->GetTypeInfo(&type), S_OK);
  for (; type; type = type->base) {
    for (const Member& member : type->members) {
      SCOPED_TRACE(std::string(type->name) + "." + member.name);
      callInEveryWay(face, member, member.get, InvokeKind::PropertyGet, depth);
      callInEveryWay(face, member, member.put, InvokeKind::PropertyPut, depth);
      callInEveryWay(face, member, member.method, InvokeKind::Method, depth);
    }
  }
}

TEST_F(LateBound, CallsOfAnyKindEndInAStatusAndLeaveNoObject) {
  for (const KnownClass& one : knownClasses()) {
    if (one.serves != Serves::Objects) continue;
    SCOPED_TRACE(one.name);
    {
      const Ref<IUnknown> object = module_.create(one.clsid);
      const std::vector<Ref<IDispatch>> faces = facesOf(object.get(), DualInterfaces{});
      // Those that a host loads for their commands alone have none.
      EXPECT_TRUE(!faces.empty() || object.as<ILoadedObject>());
      for (const Ref<IDispatch>& face : faces) callEverything(face.get());
    }
    EXPECT_EQ(module_.canUnloadNow(), S_OK) << "objects of " << one.name << " are left";
  }
}

TEST_F(LateBound, EveryFaceOfAnObjectDescribesTheInterfaceThatWasAskedFor) {
  for (const KnownClass& one : knownClasses()) {
    if (one.serves != Serves::Objects) continue;
    const Ref<IUnknown> object = module_.create(one.clsid);
    const auto check = [&]<class... Is>(TypeList<Is...>) {
      const auto expectOf = [&](const Guid& iid, const Ref<IDispatch>& face) {
        const TypeInfo* type = nullptr;
        if (!face) return;
        ASSERT_EQ(face->GetTypeInfo(&type), S_OK);
        bool described = false;
        for (; type; type = type->base) described = described || type->iid == iid;
        EXPECT_TRUE(described) << one.name << " " << formatGuid(iid);
        EXPECT_TRUE(sameObject(face.get(), object.get())) << one.name;
      };
      (expectOf(Is::iid, query<Is>(object.get())), ...);
    };
    check(DualInterfaces{});
  }
}

}  // namespace
}  // namespace forgeyard::test
