// What has changed in CConnection, by version.

#include "model/connections/connection.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CConnection"),
    {},
};
constexpr History kHistory{kRows, kNoChildren};

}  // namespace

const History& CConnection::history() const {
  return kHistory;
}

}  // namespace forgeyard
