#pragma once

#include "platform/storage/compound_file/compound_layout.h"
#include "platform/storage/disk/host_file.h"

namespace forgeyard::compound {

// Writes a whole compound file, front to back in large pieces. Throws StatusError; what is in the file then
// is of no use.
void writeCompoundFile(const CompoundLayout& layout, HostFile& file);

// After a write: lets every stream of the layout's tree read from the new file from now on.
void moveStreams(const CompoundLayout& layout, const SharedFile& file);

}  // namespace forgeyard::compound
