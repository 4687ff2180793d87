// What has changed in CConfiguration, by version.

#include "model/configuration.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CConfiguration"),
    {},
};
constexpr History kHistory{kRows, NO_CHILDREN};

}  // namespace

const History& CConfiguration::history() const {
  return kHistory;
}

}  // namespace forgeyard
