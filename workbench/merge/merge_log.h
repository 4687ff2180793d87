#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "typelib/record_tree.h"

namespace forgeyard::workbench {

// One place where both sides have changed the same thing in different ways. The values are words for people.
struct MergeConflict {
  std::string where;  // "component \"cc\", configuration \"Debug\", WarningLevel"
  std::string base;
  std::string ours;
  std::string theirs;
  // Of a conflict over a connection: the components' ids, for which their names are put into `where` at the
  // end.
  std::optional<std::pair<std::int64_t, std::int64_t>> connection{};
};

// What a merge has to say: conflicts, and what it has decided by itself.
struct MergeLog {
  std::vector<MergeConflict> conflicts;
  std::vector<std::string> notes;
};

// A value in the three versions; null where a version has none. Borrowed.
struct Sides {
  const RecordNode* base = nullptr;
  const RecordNode* ours = nullptr;
  const RecordNode* theirs = nullptr;

  // The same of a field of theirs.
  Sides field(std::string_view name) const {
    const auto of = [&](const RecordNode* node) { return node ? node->find(name) : nullptr; };
    return {of(base), of(ours), of(theirs)};
  }
};

}  // namespace forgeyard::workbench
