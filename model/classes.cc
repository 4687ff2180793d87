#include "model/classes.h"

#include <array>

#include "model/configuration.h"
#include "model/folder.h"
#include "model/folder_settings.h"
#include "model/project.h"
#include "model/simple_collection.h"
#include "model/source_file.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

template <class T, class Primary>
Ref<IUnknown> create() {
  return Ref<IUnknown>(static_cast<Primary*>(make<T>().get()));
}

constexpr std::array kClasses{
    ModelClass{CLSID_Project, &create<CProject, IProject>},
    ModelClass{CLSID_Folder, &create<CFolder, IFolder>},
    ModelClass{CLSID_SourceFile, &create<CSourceFile, ISourceFile>},
    ModelClass{CLSID_Configuration, &create<CConfiguration, IConfiguration>},
    ModelClass{CLSID_FolderSettings, &create<CFolderSettings, IFolderSettings>},
    ModelClass{CLSID_Connection, &create<CConnection, IConnection>},
    ModelClass{CLSID_SimpleCollection, &create<CSimpleCollection, ISimpleCollection>},
};

}  // namespace

std::span<const ModelClass> modelClasses() { return kClasses; }

}  // namespace forgeyard
