// What has changed in CProject, by version.

#include "model/project/project.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CProject"),
    {1},
    {0, "Beta Fix", "Compile file now has an icon"},
    {2},
    {0, "Beta Fix", "Project Settings window remembers last Components selected"},
    {0, "Beta Fix", "and selects currently active configuration"},
    {3},
    {0, "Beta Fix", "Filters in 'Insert files into Project' fixed"},
    {4},
    {0, "Beta Fix", "Saves Project after adding it to SS"},
    {5},
    {0, "Internal", "Message box upon delete component, making sure user really wants to do it"},
    {6},
    {0, "Internal", "Re-Creates External Deps on loading of project"},
    {},
};
constexpr Guid kChildren[] = {CLSID_Configuration, CLSID_Connection, CLSID_Folder, CLSID_CmdLine, GUID_NULL};
constexpr History kHistory{kRows, kChildren};

}  // namespace

const History& CProject::history() const {
  return kHistory;
}

}  // namespace forgeyard
