// typelib, register, unregister.

#include "platform/registry/registry.h"
#include "tests/hosts/console/console_sandbox.h"
#include "typelib/type_library.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class TypelibCommand : public ConsoleSandbox {};

TEST_F(TypelibCommand, ShowsEveryInterfaceWithEveryMember) {
  const std::string all = shown({"typelib"});
  for (const TypeInfo* type : typeLibrary()) {
    EXPECT_THAT(all, HasSubstr(std::string("interface ") + type->name + " : "));
    const std::string own = shown({"typelib", type->name});
    for (const Member& member : type->members) {
      EXPECT_THAT(own, HasSubstr("  HRESULT " + std::string(member.name) + "("));
      EXPECT_THAT(own, HasSubstr("[id(" + std::to_string(member.id) + ")"));
    }
  }
}

TEST_F(TypelibCommand, IsReadableDefinitionLanguage) {
  for (const char* name : {"IConfigurations", "iconfigurations", "Configurations"}) {
    EXPECT_EQ(shown({"typelib", name}),
              R"IDL([object, dual, uuid(5B2D700F-93C4-4E6F-A8D1-2F60C1B49E01)]
interface IConfigurations : IDispatch {
  [id(0), propget, helpstring("the configuration of that name")]
  HRESULT Item([in] BSTR Name, [out, retval] IConfiguration** value);
  [id(1), propget, helpstring("number of configurations")]
  HRESULT Count([out, retval] long* value);
  [id(-4), propget, helpstring("walks the configurations")]
  HRESULT _NewEnum([out, retval] IUnknown** value);
  [id(2), helpstring("removes one; the last one stays")]
  HRESULT Delete([in] IConfiguration* configuration);
  [id(3), helpstring("makes one, with the settings of another")]
  HRESULT New([in] BSTR Name, [in] IConfiguration* pBasedOn, [out, retval] IConfiguration** pNew);
};
)IDL");
  }
}

TEST_F(TypelibCommand, UnknownInterfacesAreRefused) {
  EXPECT_THAT(refused({"typelib", "IPoject"}),
              HasSubstr("There is no interface IPoject. Did you mean IProject?"));
  EXPECT_THAT(refused({"typelib", "x"}), HasSubstr("forgeyard typelib"));
}

TEST_F(TypelibCommand, RegistersAndUnregistersTheModule) {
  const std::string key = R"(HKEY_CLASSES_ROOT\KV.BuildTool\CLSID)";
  const auto registered = [&] { return Registry::load(path("../registry")).value(key, "").has_value(); };
  EXPECT_THAT(shown({"register"}), HasSubstr("Forgeyard.so is registered in "));
  EXPECT_TRUE(registered());
  EXPECT_EQ(shown({"unregister", "-q"}), "");
  EXPECT_FALSE(registered());
  must({"new", "p.nqp"});
  EXPECT_TRUE(registered()) << "a start enters what is missing";
}

}  // namespace
}  // namespace forgeyard::console
