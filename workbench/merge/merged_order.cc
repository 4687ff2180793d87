#include "workbench/merge/merged_order.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace forgeyard::workbench {

namespace {

Keys only(const Keys& keys, const std::set<std::string>& wanted) {
  Keys result;
  std::copy_if(keys.begin(), keys.end(), std::back_inserter(result),
               [&](const std::string& key) { return wanted.contains(key); });
  return result;
}

// The keys of both: `first` in its order, and what only `second` has behind what it follows there, or at the
// end if it stands there. What both have added in one place comes in the order of the sides.
Keys combined(const Keys& first, const Keys& second, bool firstIsOurs) {
  Keys result = first;
  const std::set<std::string> inFirst(first.begin(), first.end());
  const std::set<std::string> inSecond(second.begin(), second.end());
  const auto lastShared = std::find_if(second.rbegin(), second.rend(),
                                       [&](const std::string& key) { return inFirst.contains(key); });
  const auto trailing = static_cast<std::size_t>(second.rend() - lastShared);
  for (std::size_t i = 0; i < second.size(); ++i) {
    if (inFirst.contains(second[i])) continue;
    auto place = i == 0 ? result.begin() : std::find(result.begin(), result.end(), second[i - 1]) + 1;
    if (i >= trailing) {
      place = result.end();
      while (!firstIsOurs && place != result.begin() && !inSecond.contains(*(place - 1))) --place;
    } else if (firstIsOurs) {
      while (place != result.end() && !inSecond.contains(*place)) ++place;
    }
    result.insert(place, second[i]);
  }
  return result;
}

}  // namespace

Keys mergedOrder(const Keys& base, const Keys& ours, const Keys& theirs) {
  const std::set<std::string> inOurs(ours.begin(), ours.end());
  const std::set<std::string> inTheirs(theirs.begin(), theirs.end());
  std::set<std::string> everywhere;
  for (const std::string& key : base) {
    if (inOurs.contains(key) && inTheirs.contains(key)) everywhere.insert(key);
  }
  const bool oursMoved = only(ours, everywhere) != only(base, everywhere);
  return oursMoved ? combined(ours, theirs, true) : combined(theirs, ours, false);
}

}  // namespace forgeyard::workbench
