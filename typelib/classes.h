#pragma once

#include "platform/com/guid.h"

namespace forgeyard {

// Class identifiers of the module.
inline constexpr Guid CLSID_BuildTool = guid("51645AD5-3B0D-11D1-817F-00AA002676D3");
inline constexpr Guid CLSID_Project = guid("51645AD7-3B0D-11D1-817F-00AA002676D3");
inline constexpr Guid CLSID_Folder = guid("157C5E4A-3BD5-11D1-817F-00AA002676D3");
inline constexpr Guid CLSID_SourceFile = guid("5B2D7041-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Configuration = guid("5B2D7042-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_FolderSettings = guid("5B2D7043-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Connection = guid("5B2D7044-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CmdLine = guid("5B2D7045-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CmdLineSettings = guid("5B2D7046-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Cc = guid("5B2D7047-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_CcSettings = guid("5B2D7048-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Asm = guid("5B2D7049-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_AsmSettings = guid("5B2D704A-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_Linker = guid("5B2D704B-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_LinkerSettings = guid("5B2D704C-93C4-4E6F-A8D1-2F60C1B49E01");
inline constexpr Guid CLSID_SimpleCollection = guid("3F9C2D80-EC25-11D1-8180-0080C8782234");

}  // namespace forgeyard
