#pragma once

#include "platform/paths/host_path.h"
#include "platform/registry/registry.h"

namespace forgeyard {

// The table of drives that the registry holds. Entries that name no drive or no absolute host directory are
// left out; an entry without text takes its drive, even `Z:`, out of the table.
HostPaths hostPathsFrom(const Registry& registry);

}  // namespace forgeyard
