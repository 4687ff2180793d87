#pragma once

#include "typelib/record_tree.h"

namespace forgeyard::workbench {

// Takes the files of three versions out of their folders, into a list "files" of each project, where each has
// the "key" of the file that it is in all three and the id of its "folder". Equal ids mean equal folders.
void alignFiles(RecordNode& base, RecordNode& ours, RecordNode& theirs);

}  // namespace forgeyard::workbench
