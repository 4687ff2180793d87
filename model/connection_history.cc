// What has changed in CConnection, by version.

#include "model/connection.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CConnection"),
    {},
};
constexpr History kHistory{kRows, NO_CHILDREN};

}  // namespace

const History& CConnection::history() const {
  return kHistory;
}

}  // namespace forgeyard
