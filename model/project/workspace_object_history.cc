// What has changed in CWorkspaceLO, by version.

#include "model/project/workspace_object.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CWorkspaceLO"),
    {},
};
constexpr Guid kChildren[] = {CLSID_Workspace, GUID_NULL};
constexpr History kHistory{kRows, kChildren};

}  // namespace

const History& CWorkspaceLO::history() const {
  return kHistory;
}

}  // namespace forgeyard
