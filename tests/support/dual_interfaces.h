#pragma once

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

namespace forgeyard::test {

// Every interface with a description; the test of descriptions holds it against the headers.
using DualInterfaces =
    TypeList<IBuilderTask, IProjects, IBuildTool, ISimpleCollection, IComponent, IComponents, IConfiguration,
             IConfigurations, IConnection, IConnections, IKVSupportCookies, ISourceFile, ISourceFiles,
             IFolder, IFolderSettings, IOutputTab, IProject, IEntry, IEntries, IBuilderSettings,
             ICmdLineSettings, ICcSettings, IAsmSettings, ILinkSettings, ILinkerSettings, ICmdLine, ICc, IAsm,
             ILinker>;

}  // namespace forgeyard::test
