#pragma once

#include "workbench/merge/merge_log.h"

namespace forgeyard::workbench {

// The records of a project (ProjectRecords tells their form) that has been changed on two sides, in one. What
// both have changed in different ways stands as in ours and is told as a conflict; the result loads as a
// whole if the three do. All of them can be read to the end, and no two of their components have one id.
RecordNode mergedProject(const RecordNode& base, const RecordNode& ours, const RecordNode& theirs,
                         MergeLog& log);

}  // namespace forgeyard::workbench
