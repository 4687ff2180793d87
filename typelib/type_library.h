#pragma once

#include <span>
#include <string_view>

#include "platform/com/object.h"
#include "typelib/builder.h"
#include "typelib/buildtool.h"
#include "typelib/collections.h"
#include "typelib/component.h"
#include "typelib/configuration.h"
#include "typelib/connection.h"
#include "typelib/cookies.h"
#include "typelib/folder.h"
#include "typelib/output.h"
#include "typelib/project.h"
#include "typelib/self_documenting.h"
#include "typelib/settings.h"

namespace forgeyard {

// Every dual interface, bases before what derives from them.
using DualInterfaces =
    TypeList<IBuildTool, IBuilderTask, IProjects, IProject, IConfigurations, IConfiguration, IComponents,
             IComponent, IConnections, IConnection, IFolder, ISourceFiles, ISourceFile, IFolderSettings,
             ICmdLine, ICc, IAsm, ILinker, IBuilderSettings, ICmdLineSettings, ICcSettings, IAsmSettings,
             ILinkSettings, ILinkerSettings, IOutputTab, IKVSupportCookies, ISimpleCollection, IEntries,
             IEntry, IReporter>;

// Their descriptions, in the same order: the type library. Any thread.
std::span<const TypeInfo* const> typeLibrary();

// By name in any case, with the leading I or without, or by identifier; null when there is none.
const TypeInfo* findInterface(std::string_view name);
const TypeInfo* findInterface(const Guid& iid);

}  // namespace forgeyard
