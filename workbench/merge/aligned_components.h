#pragma once

#include "workbench/merge/merge_log.h"

namespace forgeyard::workbench {

// Renumbers the components of theirs until equal ids mean the same component in all three versions.
void alignComponents(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log);

}  // namespace forgeyard::workbench
