#include "tools/component/target_tool.h"

#include <optional>
#include <string>

#include "platform/registry/registry.h"
#include "typelib/cookies.h"

namespace forgeyard {

namespace {

// With its terminator.
constexpr std::size_t kLongestRegistryText = 261;

// The configuration's target. Nothing if none was specified; a cookie store that fails gives the empty name,
// which stands for the unnamed value of the registry key.
std::optional<BString> targetOf(IConfiguration* configuration) {
  const Ref<IKVSupportCookies> cookies = query<IKVSupportCookies>(configuration);
  if (!cookies) return std::nullopt;
  BString target;
  const HRESULT status = cookies->get_Cookie(u"Target", &target);
  if (failed(status)) return BString(u"");
  if (status != S_OK || target.empty()) return std::nullopt;
  return target;
}

BString noEntry(const BString& target, std::u16string_view noun) {
  return BString::concat(BString::concat(u"Specified target: ", target, u" has no "), noun,
                         u" setting registry entry.");
}

}  // namespace

TargetTool findTargetTool(IConfiguration* configuration, const TargetToolKind& kind) {
  const std::optional<BString> target = targetOf(configuration);
  if (!target) {
    return {
        {},
        u"The target for this project was not specified. Use Project Settings, General tab to correct the "
        u"Target entry."};
  }
  const Registry registry = Registry::load(Registry::defaultFile());
  const std::optional<RegistryKey> key = registry.open(kind.registryKey);
  if (!key) return {{}, BString::concat(u"Error reading the registry for ", kind.noun, u" settings.")};
  const std::optional<std::string> command = key->value(target->narrow());
  if (!command || command->size() >= kLongestRegistryText) return {{}, noEntry(*target, kind.noun)};
  return {BString::fromNarrow(*command), {}};
}

}  // namespace forgeyard
