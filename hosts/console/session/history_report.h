#pragma once

#include <functional>
#include <string>

#include "hosts/console/session/session.h"

namespace forgeyard::console {

// Which rows of the classes' histories are wanted.
struct HistoryWish {
  std::string className;  // in any case, "KV." before it or not; empty: from the objects of the start down
  std::string key;        // exact; empty: all
  std::int32_t first = -1;
  std::int32_t last = -1;
};

// Walks from the objects of a host's start through the classes that they name as theirs, and writes for each
// what changed in it, by version. Throws a Failure for a class that is unknown or tells nothing.
void reportHistory(Session& session, const HistoryWish& wish);

}  // namespace forgeyard::console
