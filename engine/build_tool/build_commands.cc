#include "engine/build_tool/build_commands.h"

#include <array>

namespace forgeyard {

namespace {

constexpr CommandEntry command(std::uint32_t id, const char16_t* name, const char16_t* menu,
                               const char16_t* status, const char16_t* tip) {
  return {CommandKind::Command, id, 0, name, menu, status, tip};
}

constexpr std::array kCommands{
    CommandEntry{CommandKind::PopUp, CMD_SetActiveProject, 0, u"SetActiveProject", u"Set Acti&ve Project",
                 u"Set the active project", u"Set Active Project"},
    CommandEntry{CommandKind::Command, CMD_BuildProjectFirst, CMD_BuildProjectLast, u"BuildProject0", u"!",
                 u"!", u"!"},
    command(CMD_BuildNoProject, u"BuildNoProject", u"!", u"!", u"!"),
    command(CMD_BuildInsertProject, u"BuildInsertProject", u"&Insert project into WorkSpace...",
            u"Insert an existing project into the workspace", u"Insert Project"),
    command(CMD_ProjectRemove, u"ProjectRemove", u"Remove project...", u"Remove a project from the workspace",
            u"Remove Project"),
    command(CMD_ProjectBuild, u"ProjectBuild", u"&Build Project", u"Build the selected project",
            u"Build Project"),
    command(CMD_ProjectStopBuild, u"ProjectStopBuild", u"&Stop Build", u"Stop the current build",
            u"Stop Build"),
    command(CMD_ProjectRebuild, u"ProjectRebuild", u"&Rebuild Project", u"Rebuild the selected project",
            u"Rebuild Project"),
    command(CMD_ProjectClean, u"ProjectClean", u"&Clean Project", u"Delete all intermediate and output files",
            u"Clean Project"),
    command(CMD_ProjectCompile, u"ProjectCompile", u"&Compile", u"Compile the selected files", u"Compile"),
};

}  // namespace

std::span<const CommandEntry> buildCommands() {
  return kCommands;
}

}  // namespace forgeyard
