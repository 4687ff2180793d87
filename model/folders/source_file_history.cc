// What has changed in CSourceFile, by version.

#include "model/folders/source_file.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CSourceFile"),
    {},
};
constexpr History kHistory{kRows, kNoChildren};

}  // namespace

const History& CSourceFile::history() const {
  return kHistory;
}

}  // namespace forgeyard
