#include "tests/plugin/class_list.h"

#include <array>

#include "typelib/classes.h"

namespace forgeyard::test {

std::span<const KnownClass> knownClasses() {
  using enum Serves;
  static constexpr std::array classes{
      KnownClass{"BuildTool", CLSID_BuildTool, Objects},
      KnownClass{"Project", CLSID_Project, Objects},
      KnownClass{"Folder", CLSID_Folder, Objects},
      KnownClass{"FolderWindow", CLSID_FolderWindow, NotYet},
      KnownClass{"Workspace", CLSID_Workspace, NotYet},
      KnownClass{"SourceFile", CLSID_SourceFile, Objects},
      KnownClass{"Configuration", CLSID_Configuration, Objects},
      KnownClass{"Configurations", CLSID_Configurations, NotYet},
      KnownClass{"FolderSettings", CLSID_FolderSettings, Objects},
      KnownClass{"FolderTab", CLSID_FolderTab, NotYet},
      KnownClass{"ConfigurationTab", CLSID_ConfigurationTab, NotYet},
      KnownClass{"Connection", CLSID_Connection, Objects},
      KnownClass{"DataObject", CLSID_DataObject, Nothing},
      KnownClass{"FolderLO", CLSID_FolderLO, Objects},
      KnownClass{"WorkspaceLO", CLSID_WorkspaceLO, Objects},
      KnownClass{"SourceFileTab", CLSID_SourceFileTab, NotYet},
      KnownClass{"SourceFileTab2", CLSID_SourceFileTab2, NotYet},
      KnownClass{"CmdLine", CLSID_CmdLine, Objects},
      KnownClass{"CmdLineTab", CLSID_CmdLineTab, NotYet},
      KnownClass{"CmdLineSettings", CLSID_CmdLineSettings, Objects},
      KnownClass{"CmdLineLO", CLSID_CmdLineLO, Objects},
      KnownClass{"CmdLineWindow", CLSID_CmdLineWindow, NotYet},
      KnownClass{"SourceControl", CLSID_SourceControl, NotYet},
      KnownClass{"FolderPane", CLSID_FolderPane, NotYet},
      KnownClass{"Cc", CLSID_Cc, Objects},
      KnownClass{"CcSettings", CLSID_CcSettings, Objects},
      KnownClass{"CcLO", CLSID_CcLO, Objects},
      KnownClass{"CcWindow", CLSID_CcWindow, NotYet},
      KnownClass{"Asm", CLSID_Asm, Objects},
      KnownClass{"AsmTab", CLSID_AsmTab, NotYet},
      KnownClass{"AsmSettings", CLSID_AsmSettings, Objects},
      KnownClass{"AsmLO", CLSID_AsmLO, Objects},
      KnownClass{"AsmWindow", CLSID_AsmWindow, NotYet},
      KnownClass{"Linker", CLSID_Linker, Objects},
      KnownClass{"LinkerSettings", CLSID_LinkerSettings, Objects},
      KnownClass{"LinkerLO", CLSID_LinkerLO, Objects},
      KnownClass{"LinkerWindow", CLSID_LinkerWindow, NotYet},
      KnownClass{"CcTab", CLSID_CcTab, NotYet},
      KnownClass{"CcTab2", CLSID_CcTab2, NotYet},
      KnownClass{"LinkTab", CLSID_LinkTab, NotYet},
      KnownClass{"SourceFileTab3", CLSID_SourceFileTab3, NotYet},
      KnownClass{"SimpleCollection", CLSID_SimpleCollection, Objects},
      KnownClass{"BuildCategories", CLSID_BuildCategories, Nothing},
  };
  return classes;
}

}  // namespace forgeyard::test
