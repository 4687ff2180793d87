#pragma once

#include "platform/storage/disk/host_file.h"

namespace forgeyard::compound {

// Gives a file that is to replace another its owner, group, permissions and extended attributes (access
// lists, labels). What the process may not give is left out; where the group can't be kept, its members get
// no more than others.
void copyAttributes(const HostFile& from, const HostFile& to) noexcept;

}  // namespace forgeyard::compound
