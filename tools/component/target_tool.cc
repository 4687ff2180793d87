#include "tools/component/target_tool.h"

#include <optional>
#include <string>

#include "platform/registry/registry.h"
#include "platform/registry/registry_keys.h"
#include "typelib/cookies.h"

namespace forgeyard {

namespace {

// The configuration's target. Nothing if none was specified; a cookie store that fails gives the empty name,
// which selects the unnamed value of the registry key.
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

BString tooLong(const BString& target, std::u16string_view noun, std::size_t bytes) {
  return BString::concat(BString::concat(u"Specified target: ", target, u" has a "), noun,
                         BString::fromNarrow(" setting registry entry of " + std::to_string(bytes) +
                                             " bytes; the longest that can be used has " +
                                             std::to_string(registry_keys::kLongestToolText) + "."));
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
  if (!command) return {{}, noEntry(*target, kind.noun)};
  if (command->size() > registry_keys::kLongestToolText)
    return {{}, tooLong(*target, kind.noun, command->size())};
  return {BString::fromNarrow(*command), {}};
}

}  // namespace forgeyard
