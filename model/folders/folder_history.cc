// What has changed in CFolder, by version.

#include "model/folders/folder.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CFolder"),
    {},
};
constexpr Guid kChildren[] = {CLSID_SourceFile, CLSID_FolderWindow, GUID_NULL};
constexpr History kHistory{kRows, kChildren};

}  // namespace

const History& CFolder::history() const {
  return kHistory;
}

}  // namespace forgeyard
