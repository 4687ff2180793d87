#include "plugin/object_map.h"

#include <algorithm>
#include <array>

#include "engine/classes.h"
#include "model/classes.h"
#include "tools/classes.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

struct Row {
  Guid clsid;
  const char* name;
};

constexpr std::array kProjectSide{
    Row{CLSID_BuildTool, "BuildTool"},
    Row{CLSID_Project, "Project"},
    Row{CLSID_Folder, "Folder"},
    Row{CLSID_FolderWindow, "FolderWindow"},
    Row{CLSID_Workspace, "Workspace"},
    Row{CLSID_SourceFile, "SourceFile"},
    Row{CLSID_Configuration, "Configuration"},
    Row{CLSID_Configurations, "Configurations"},
    Row{CLSID_FolderSettings, "FolderSettings"},
    Row{CLSID_FolderTab, "FolderTab"},
    Row{CLSID_ConfigurationTab, "ConfigurationTab"},
    Row{CLSID_Connection, "Connection"},
    Row{CLSID_DataObjectInMap, "DataObject"},
    Row{CLSID_FolderLO, "FolderLO"},
    Row{CLSID_WorkspaceLO, "WorkspaceLO"},
    Row{CLSID_SourceFileTab, "SourceFileTab"},
    Row{CLSID_SourceFileTab2, "SourceFileTab2"},
    Row{CLSID_CmdLine, "CmdLine"},
    Row{CLSID_CmdLineTab, "CmdLineTab"},
    Row{CLSID_CmdLineSettings, "CmdLineSettings"},
    Row{CLSID_CmdLineLO, "CmdLineLO"},
    Row{CLSID_CmdLineWindow, "CmdLineWindow"},
    Row{CLSID_SourceControl, "SourceControl"},
    Row{CLSID_FolderPane, "FolderPane"},
};
static_assert(kProjectSide.size() == kProjectSideClasses);

constexpr std::array kToolSide{
    Row{CLSID_Cc, "Cc"},
    Row{CLSID_CcSettings, "CcSettings"},
    Row{CLSID_CcLO, "CcLO"},
    Row{CLSID_CcWindow, "CcWindow"},
    Row{CLSID_Asm, "Asm"},
    Row{CLSID_AsmTab, "AsmTab"},
    Row{CLSID_AsmSettings, "AsmSettings"},
    Row{CLSID_AsmLO, "AsmLO"},
    Row{CLSID_AsmWindow, "AsmWindow"},
    Row{CLSID_Linker, "Linker"},
    Row{CLSID_LinkerSettings, "LinkerSettings"},
    Row{CLSID_LinkerLO, "LinkerLO"},
    Row{CLSID_LinkerWindow, "LinkerWindow"},
    Row{CLSID_CcTab, "CcTab"},
    Row{CLSID_CcTab2, "CcTab2"},
    Row{CLSID_AsmTab, "AsmTab"},
    Row{CLSID_LinkTab, "LinkTab"},
    Row{CLSID_SourceFileTab3, "SourceFileTab3"},
};
static_assert(kToolSide.size() == kToolSideClasses);

constexpr std::array kHostLibrary{Row{CLSID_SimpleCollection, "SimpleCollection"}};

HRESULT notBuiltYet(const Guid&, void** out) {
  *out = nullptr;
  return E_NOTIMPL;
}

ClassEntry entryOf(const Row& row) {
  for (const auto built : {engineClasses(), modelClasses(), toolClasses()}) {
    const auto found =
        std::find_if(built.begin(), built.end(), [&](const ClassEntry& e) { return e.clsid == row.clsid; });
    if (found != built.end()) return {row.clsid, row.name, found->create};
  }
  return {row.clsid, row.name, notBuiltYet};
}

}  // namespace

const std::vector<ClassEntry>& objectMap() {
  static const std::vector<ClassEntry> map = [] {
    std::vector<ClassEntry> merged;
    merged.reserve(kProjectSide.size() + kToolSide.size() + 1);
    std::transform(kProjectSide.begin(), kProjectSide.end(), std::back_inserter(merged), entryOf);
    std::transform(kToolSide.begin(), kToolSide.end(), std::back_inserter(merged), entryOf);
    merged.push_back({});
    return merged;
  }();
  return map;
}

std::span<const ClassEntry> hostLibraryClasses() {
  static const std::array classes{entryOf(kHostLibrary.front())};
  return classes;
}

const ClassEntry* findClass(const Guid& clsid) {
  const std::span map(objectMap());
  for (const auto classes : {map.first(map.size() - 1), hostLibraryClasses()}) {
    for (const ClassEntry& entry : classes) {
      if (entry.clsid == clsid) return &entry;
    }
  }
  return nullptr;
}

}  // namespace forgeyard
