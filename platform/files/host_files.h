#pragma once

#include "platform/files/file_system.h"
#include "platform/files/host_location.h"

namespace forgeyard {

// The host's disk. Owned by the process.
FileSystem& hostFiles();

}  // namespace forgeyard
