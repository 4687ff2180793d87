#pragma once

#include <cstdint>
#include <span>

#include "typelib/host.h"

namespace forgeyard {

// The build tool's commands, by the identifiers that menus and hosts know them by.
enum BuildCommand : std::uint32_t {
  CMD_SetActiveProject = 101,
  CMD_BuildProjectFirst = 102,  // one command for each project of the workspace
  CMD_BuildProjectLast = 121,
  CMD_BuildNoProject = 122,
  CMD_BuildInsertProject = 123,
  CMD_ProjectRemove = 281,
  CMD_ProjectBuild = 301,
  CMD_ProjectStopBuild = 303,
  CMD_ProjectRebuild = 307,
  CMD_ProjectClean = 309,
  CMD_ProjectCompile = 329,
};

std::span<const CommandEntry> buildCommands();

}  // namespace forgeyard
