#include "model/classes.h"

#include <array>

#include "engine/simple_collection.h"
#include "model/components/component_objects.h"
#include "model/configurations/configuration.h"
#include "model/core/data_object.h"
#include "model/folders/folder.h"
#include "model/folders/folder_settings.h"
#include "model/folders/source_file.h"
#include "model/project/project.h"
#include "model/project/workspace_object.h"
#include "typelib/classes.h"

namespace forgeyard {

std::span<const ClassEntry> modelClasses() {
  static constexpr std::array classes{
      ClassEntry{CLSID_Project, "Project", createObject<CProject>},
      ClassEntry{CLSID_Folder, "Folder", createObject<CFolder>},
      ClassEntry{CLSID_SourceFile, "SourceFile", createObject<CSourceFile>},
      ClassEntry{CLSID_Configuration, "Configuration", createObject<CConfiguration>},
      ClassEntry{CLSID_FolderSettings, "FolderSettings", createObject<CFolderSettings>},
      ClassEntry{CLSID_DataObjectInMap, "DataObject", createObject<KVDataObject>},
      ClassEntry{CLSID_WorkspaceLO, "WorkspaceLO", createObject<CWorkspaceLO>},
      ClassEntry{CLSID_FolderLO, "FolderLO", createObject<CFolderLO>},
      ClassEntry{CLSID_CmdLineLO, "CmdLineLO", createObject<CCmdLineLO>},
      ClassEntry{CLSID_CcLO, "CcLO", createObject<CCcLO>},
      ClassEntry{CLSID_AsmLO, "AsmLO", createObject<CAsmLO>},
      ClassEntry{CLSID_LinkerLO, "LinkerLO", createObject<CLinkerLO>},
      ClassEntry{CLSID_Connection, "Connection", createObject<CConnection>},
      ClassEntry{CLSID_SimpleCollection, "SimpleCollection", createObject<CSimpleCollection>},
  };
  return classes;
}

}  // namespace forgeyard
