#pragma once

#include "hosts/console/merge/merge_log.h"

namespace forgeyard::console {

// Renumbers the components of theirs until equal ids mean the same component in all three versions.
void alignComponents(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log);

}  // namespace forgeyard::console
