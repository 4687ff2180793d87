// What has changed in CBuildTool, by version.

#include "engine/build_tool/build_tool.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr HistoryRow kRows[] = {
    FORGEYARD_HISTORY_HEAD("CBuildTool"),
    {1},
    {0, "Beta Fix", "Configuration menu is shown properly when no project is loaded "},
    {0, "Beta Fix", "Add project to SourceControl is shown properly with no project loaded"},
    {0, "Beta Fix", "The command line build components have a window which shows the output files"},
    {2},
    {0, "Internal",
     "Fix: Thread leak when building DOS command line components. Quillon now spawns a Win32 intermediate "
     "process (tidespawn) topipe the information back to Quillon"},
    {0, "Internal",
     "If a component's output and input files are the same, a special .trg file is used to keep track of "
     "minimal rebuild"},
    {},
};
constexpr Guid kChildren[] = {CLSID_Project, GUID_NULL};
constexpr History kHistory{kRows, kChildren};

}  // namespace

const History& CBuildTool::history() const {
  return kHistory;
}

}  // namespace forgeyard
