// What has changed in CConfiguration, by version.

#include "model/configurations/configuration.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CConfiguration"),
    {},
};
constexpr History kHistory{kRows, kNoChildren};

}  // namespace

const History& CConfiguration::history() const {
  return kHistory;
}

}  // namespace forgeyard
