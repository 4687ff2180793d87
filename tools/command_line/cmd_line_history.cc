// What has changed in CCmdLine, by version.

#include "tools/command_line/cmd_line.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CCmdLine"),
    {},
};
constexpr Guid kChildren[] = {CLSID_CmdLineWindow, GUID_NULL};
constexpr History kHistory{kRows, kChildren};

}  // namespace

const History& CCmdLine::history() const {
  return kHistory;
}

}  // namespace forgeyard
