#pragma once

#include <string>
#include <vector>

namespace forgeyard::workbench {

// What tells the items of a list apart, in the list's order; no two are equal.
using Keys = std::vector<std::string>;

// The keys of ours and theirs together. The order is theirs if ours is that of the base, else ours; what one
// side has added stands behind what it follows there.
Keys mergedOrder(const Keys& base, const Keys& ours, const Keys& theirs);

}  // namespace forgeyard::workbench
