#pragma once

#include <set>
#include <string>
#include <utility>

#include "workbench/merge/merge_log.h"

namespace forgeyard::workbench {

// The versions of a project, prepared for a merge value by value: equal ids mean the same component, what one
// side has removed and the other left alone is gone from all three, and the files of all folders are one list
// "files" of the root, each with its "key" and the id of its "folder".
struct AlignedProjects {
  RecordNode base;
  RecordNode ours;
  RecordNode theirs;
  // Ids of components and names of configurations that a side has, without settings of one in the other.
  std::set<std::pair<std::int64_t, std::string>> gaps;
};

AlignedProjects alignedProjects(RecordNode base, RecordNode ours, RecordNode theirs, MergeLog& log);

}  // namespace forgeyard::workbench
