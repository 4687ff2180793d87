#include "tools/component/target_tool.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "platform/com/object.h"
#include "platform/registry/registry_keys.h"
#include "tests/platform/support/temporary_directory.h"
#include "tests/support/stub_configuration.h"
#include "typelib/cookies.h"

namespace forgeyard {
namespace {

// A configuration that is nothing but its "Target".
class TargetConfiguration final : public test::StubConfiguration<Dual<IKVSupportCookies>> {
 public:
  TargetConfiguration(HRESULT status, const BString& target) : status_(status), target_(target) {}

  HRESULT get_Cookie(const BString& cookie, BString* value) override {
    EXPECT_EQ(cookie, BString(u"Target"));
    if (status_ == S_OK) *value = target_;
    return status_;
  }
  HRESULT put_Cookie(const BString&, const BString&) override { return E_NOTIMPL; }
  HRESULT DeleteCookie(const BString&) override { return E_NOTIMPL; }
  HRESULT GetCookies(Ref<IEnumString>*) override { return E_NOTIMPL; }

 private:
  HRESULT status_;
  BString target_;
};

constexpr const char* kNoTarget =
    "The target for this project was not specified. Use Project Settings, General tab to correct the Target "
    "entry.";

// Returns the command, or "! " and the problem.
class TargetToolTest : public testing::Test {
 protected:
  ~TargetToolTest() override { unsetenv("FORGEYARD_REGISTRY"); }

  std::string find(const std::string& registry, HRESULT cookieStatus, const BString& target,
                   const TargetToolKind& kind = {registry_keys::kCompilers, u"compiler"}) {
    setenv("FORGEYARD_REGISTRY", directory_.put("registry", registry).c_str(), 1);
    const auto configuration = make<TargetConfiguration>(cookieStatus, target);
    const TargetTool tool = findTargetTool(configuration.get(), kind);
    EXPECT_EQ(tool.command.isNull(), !tool.problem.isNull());
    return tool.problem.isNull() ? tool.command.narrow() : "! " + tool.problem.narrow();
  }

  TemporaryDirectory directory_;
};

const std::string kKey = "[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Compilers]\n";

TEST_F(TargetToolTest, TellsTheWaysToHaveNoToolApart) {
  const struct {
    const char* name;
    std::string registry;
    HRESULT cookie;
    const char16_t* target;
    std::string result;
  } cases[] = {
      {"a tool", kKey + "mips=cctool -q\n", S_OK, u"mips", "cctool -q"},
      {"names ignore case", kKey + "MIPS=cctool\n", S_OK, u"mips", "cctool"},
      {"text as it stands", kKey + "mips=%20\"C:\\My Tools\\cc\"%20\n", S_OK, u"mips",
       " \"C:\\My Tools\\cc\" "},
      {"an empty text", kKey + "mips=\n", S_OK, u"mips", ""},
      {"a target beyond ASCII", kKey + "m\xC3\xBCps=cctool\n", S_OK, u"m\u00FCps", "cctool"},
      {"no cookie", kKey + "mips=cctool\n", S_FALSE, u"", std::string("! ") + kNoTarget},
      {"an empty cookie", kKey + "mips=cctool\n", S_OK, u"", std::string("! ") + kNoTarget},
      {"no key", "", S_OK, u"mips", "! Error reading the registry for compiler settings."},
      {"another key", "[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Assemblers]\nmips=as\n", S_OK,
       u"mips", "! Error reading the registry for compiler settings."},
      {"no value", kKey + "arm=cctool\n", S_OK, u"mips",
       "! Specified target: mips has no compiler setting registry entry."},
      {"a failing cookie store takes the unnamed value", kKey + "@=fallback\nmips=cctool\n", E_FAIL, u"mips",
       "fallback"},
      {"a failing cookie store without an unnamed value", kKey + "mips=cctool\n", E_FAIL, u"mips",
       "! Specified target:  has no compiler setting registry entry."},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(find(row.registry, row.cookie, row.target), row.result) << row.name;
  }
}

TEST_F(TargetToolTest, ATextThatIsTooLongIsReportedAsThat) {
  const std::string longest(260, 'x');
  EXPECT_EQ(find(kKey + "mips=" + longest, S_OK, u"mips"), longest);
  EXPECT_EQ(
      find(kKey + "mips=" + longest + "x", S_OK, u"mips"),
      "! Specified target: mips has a compiler setting registry entry of 261 bytes; the longest that can "
      "be used has 260.");
}

TEST_F(TargetToolTest, MessagesNameTheKindOfTool) {
  const TargetToolKind kind{registry_keys::kAssemblers, u"assembler"};
  EXPECT_EQ(find("", S_OK, u"mips", kind), "! Error reading the registry for assembler settings.");
  EXPECT_EQ(find("[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Assemblers]\n", S_OK, u"mips", kind),
            "! Specified target: mips has no assembler setting registry entry.");
}

TEST_F(TargetToolTest, NoConfigurationHasNoTarget) {
  EXPECT_EQ(findTargetTool(nullptr, {registry_keys::kCompilers, u"compiler"}).problem.narrow(), kNoTarget);
}

}  // namespace
}  // namespace forgeyard
