// What has changed in CSourceFile, by version.

#include "model/source_file.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CSourceFile"),
    {},
};
constexpr History kHistory{kRows, NO_CHILDREN};

}  // namespace

const History& CSourceFile::history() const {
  return kHistory;
}

}  // namespace forgeyard
