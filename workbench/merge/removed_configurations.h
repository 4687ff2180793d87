#pragma once

#include "workbench/merge/merge_log.h"

namespace forgeyard::workbench {

// The same of configurations, each of which is its record and the settings of each component in it. New
// components keep the settings of removed ones, which may stand behind another name now. One configuration
// stays.
void settleRemovedConfigurations(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log);

}  // namespace forgeyard::workbench
