#pragma once

#include "platform/com/guid.h"

namespace forgeyard {

// Class identifiers of the module: the project and workspace side.
inline constexpr Guid CLSID_BuildTool = guid("51645AD5-3B0D-11D1-817F-00AA002676D3");
inline constexpr Guid CLSID_Project = guid("51645AD7-3B0D-11D1-817F-00AA002676D3");
inline constexpr Guid CLSID_Folder = guid("157C5E4A-3BD5-11D1-817F-00AA002676D3");
inline constexpr Guid CLSID_FolderWindow = guid("5B2D704D-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Workspace = guid("5B2D704E-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_SourceFile = guid("5B2D7041-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Configuration = guid("5B2D7042-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Configurations = guid("5B2D704F-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_FolderSettings = guid("5B2D7043-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_FolderTab = guid("93CA2F05-5446-11D1-817F-006097836880");
inline constexpr Guid CLSID_ConfigurationTab = guid("5B2D7050-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Connection = guid("5B2D7044-93C4-4E6F-A8D1-2F60C1B49E01");
// What the registry and the type library say, and what the module answers to: data objects are made directly,
// by the code that needs them.
inline constexpr Guid CLSID_DataObject = guid("31153528-59D3-11D1-817F-006097836880");
inline constexpr Guid CLSID_DataObjectInMap = guid("2334D2B2-713E-11CF-8AE5-00AA00C00905");
inline constexpr Guid CLSID_FolderLO = guid("5B2D7051-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_WorkspaceLO = guid("5B2D7052-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_SourceFileTab = guid("5B2D7053-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_SourceFileTab2 = guid("5B2D7054-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CmdLine = guid("5B2D7045-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CmdLineTab = guid("5B2D7055-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CmdLineSettings = guid("5B2D7046-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CmdLineLO = guid("5B2D7056-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CmdLineWindow = guid("5B2D7057-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_SourceControl = guid("5B2D7058-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_FolderPane = guid("5B2D7059-93C4-4E6F-A8D1-2F60C1B49E01");

// The compiler, assembler and linker side.
inline constexpr Guid CLSID_Cc = guid("5B2D7047-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CcSettings = guid("5B2D7048-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CcLO = guid("5B2D705A-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CcWindow = guid("5B2D705B-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Asm = guid("5B2D7049-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_AsmTab = guid("5B2D705C-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_AsmSettings = guid("5B2D704A-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_AsmLO = guid("5B2D705D-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_AsmWindow = guid("5B2D705E-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Linker = guid("5B2D704B-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_LinkerSettings = guid("5B2D704C-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_LinkerLO = guid("5B2D705F-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_LinkerWindow = guid("5B2D7060-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CcTab = guid("5B2D7061-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CcTab2 = guid("5B2D7062-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_LinkTab = guid("5B2D7063-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_SourceFileTab3 = guid("5B2D7064-93C4-4E6F-A8D1-2F60C1B49E01");

// Declared for hosts; nothing here creates it.
inline constexpr Guid CLSID_BuildCategories = guid("5B2D7065-93C4-4E6F-A8D1-2F60C1B49E01");
// A class of the hosts' common library.
inline constexpr Guid CLSID_SimpleCollection = guid("3F9C2D80-EC25-11D1-8180-0080C8782234");

// The type library of the module.
inline constexpr Guid LIBID_FORGEYARDLib = guid("51645AC4-3B0D-11D1-817F-00AA002676D3");

// Categories, by which a host finds classes in the registry.
inline constexpr Guid CATID_UseCommands = guid("D4661A41-0759-11D1-817F-00AA002676D3");
inline constexpr Guid CATID_LoadedObject = guid("B4E2AAC0-B71E-11D0-B8BC-0000B46096F0");
inline constexpr Guid CATID_BuildComponent = guid("78891EA0-9163-11D0-AB97-00C0F0093B0F");

}  // namespace forgeyard
