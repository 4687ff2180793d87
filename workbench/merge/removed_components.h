#pragma once

#include "workbench/merge/merge_log.h"

namespace forgeyard::workbench {

// A component that one side has removed and the other left alone is gone from all three versions, which are
// aligned, and so are its connections. One that the other has changed is a conflict and stays as in ours.
// Files are told one by one and stay in their lists.
void settleRemovedComponents(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log);

}  // namespace forgeyard::workbench
