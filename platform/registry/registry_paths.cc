#include "platform/registry/registry_paths.h"

namespace forgeyard {

HostPaths hostPathsFrom(const Registry& registry) {
  HostPaths paths;
  const std::optional<RegistryKey> drives = registry.open(registry_keys::kDrives);
  if (!drives) return paths;
  for (const std::string& name : drives->valueNames()) paths.mapDrive(name, drives->value(name).value_or(""));
  return paths;
}

}  // namespace forgeyard
