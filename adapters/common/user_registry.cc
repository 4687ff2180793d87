#include "adapters/common/user_registry.h"

#include "platform/registry/registry_keys.h"

namespace forgeyard {

HostPaths UserRegistry::drives() {
  HostPaths paths;
  if (const auto key = get().open(registry_keys::kDrives)) {
    for (const std::string& name : key->valueNames()) paths.mapDrive(name, key->value(name).value_or(""));
  }
  return paths;
}

}  // namespace forgeyard
