// The commands of CBuildTool and their state.

#include <algorithm>

#include "engine/build_tool/build_commands.h"
#include "engine/build_tool/build_tool.h"
#include "engine/build_tool/command_state.h"
#include "engine/modal_scope.h"

namespace forgeyard {

namespace {

constexpr const char16_t* kBusyText = u"A new project may not be selected whilst a build is in progress.";

}  // namespace

HRESULT CBuildTool::GetCommands(std::span<const CommandEntry>* out) {
  *out = buildCommands();
  return S_OK;
}

HRESULT CBuildTool::RunCommand(std::uint32_t id) {
  return guard([&] {
    switch (id) {
      case CMD_ProjectBuild:
        return build(E_TASK_BUILD);
      case CMD_ProjectRebuild:
        return build(E_TASK_REBUILD);
      case CMD_ProjectClean:
        return build(E_TASK_CLEAN);
      case CMD_ProjectCompile:
        return compileSelection();
      case CMD_ProjectStopBuild:
        return stop();
      case CMD_ProjectRemove:
        return removeActiveProject();
      case CMD_BuildInsertProject:
        return insertProjectByUser();
      default:
        if (id < CMD_BuildProjectFirst || id > CMD_BuildProjectLast) throw StatusError(E_INVALIDARG);
        chooseProject(id - CMD_BuildProjectFirst);
    }
  });
}

bool CBuildTool::hasSelection() {
  bool any = false;
  forEach(selectedItems(), [&](const Ref<IUnknown>&) { any = true; });
  return any;
}

bool CBuildTool::enabled(std::uint32_t id) {
  switch (id) {
    case CMD_ProjectBuild:
    case CMD_ProjectRebuild:
    case CMD_ProjectClean:
      return !building_ && active_;
    case CMD_ProjectCompile:
      return !building_ && active_ && hasSelection();
    case CMD_ProjectStopBuild:
      return building_ && active_;
    case CMD_ProjectRemove:
      return !building_ && active_;
    case CMD_BuildNoProject:
      return false;
    default:
      return !building_;
  }
}

HRESULT CBuildTool::UpdateCommand(std::uint32_t id, IHostCommand* command, std::int32_t* changed) {
  *changed = 0;
  return guard([&] {
    if (id >= CMD_BuildProjectFirst && id <= CMD_BuildNoProject)
      return updateProjectCommand(id, *command, *changed);
    *changed = setEnabled(*command, enabled(id));
  });
}

// One numbered command for each project, and a disabled line where there is none.
void CBuildTool::updateProjectCommand(std::uint32_t id, IHostCommand& command, std::int32_t& changed) {
  if (id == CMD_BuildNoProject) {
    if (projects_.empty()) check(command.put_MenuText(u"<no projects>"));
    changed = setEnabled(command, false) | (projects_.empty() ? 1 : 0);
    return;
  }
  const std::size_t position = id - CMD_BuildProjectFirst;
  if (position >= projects_.size()) return;
  const Ref<IProject> project = projects_[position];
  BString name;
  check(project->get_Name(&name));
  check(command.put_MenuText(name));
  check(command.put_Checked(project == active_ ? 1 : 0));
  changed = 1;
}

void CBuildTool::refreshProjectMenu() {
  if (const Ref<ICommandHost> commands = lookUp<ICommandHost>(site_.get(), SID_CommandHost)) {
    ignore(commands->RefreshMenu(CMD_BuildProjectFirst, CMD_BuildNoProject));
  }
}

void CBuildTool::chooseProject(std::uint32_t position) {
  if (position >= projects_.size() || projects_[position] == active_) return;
  if (building_) {
    const ModalScope scope(site_.get());
    scope.show(kBusyText, u"Project", MessageButtons::Ok, MessageIcon::Exclamation);
    return;
  }
  check(put_ActiveProject(projects_[position].get()));
}

// Asks for the project file; the user's answer is a path in the model's spelling.
void CBuildTool::insertProjectByUser() {
  BString path;
  {
    const ModalScope scope(site_.get());
    bool ok = false;
    check(scope.userInterface().ChooseFile(u"Insert project into workspace", u"Quillon Project Files (*.nqp)",
                                           u"nqp", &path, &ok));
    if (!ok) return;
  }
  check(InsertProject(path, nullptr));
}

bool CBuildTool::confirmRemoval(IProject& project) {
  const ModalScope scope(site_.get());
  if (scope.show(u"Are you sure you want to remove this project?", u"Remove Project Confirmation",
                 MessageButtons::YesNo, MessageIcon::Question) != MessageAnswer::Yes) {
    return false;
  }
  std::int32_t dirty = 0;
  check(project.get_Dirty(&dirty));
  if (dirty && scope.show(u"Project has changed!\nDo you want to save current changes?", u"Project Changed",
                          MessageButtons::YesNo, MessageIcon::Question) == MessageAnswer::Yes) {
    check(project.ProjectSave());
  }
  return true;
}

void CBuildTool::removeActiveProject() {
  const Ref<IProject> project = active_;
  if (!project || !confirmRemoval(*project)) return;
  const auto found = std::find(projects_.begin(), projects_.end(), project);
  if (found == projects_.end()) return;
  const bool first = found == projects_.begin();
  Ref<IProject> next;
  if (projects_.size() > 1) next = first ? *(found + 1) : *(found - 1);
  projects_.erase(found);
  check(put_ActiveProject(next.get()));
  ReviewActiveProject();
  ignore(project->ProjectClose());
  ignore(project->OnClose());
}

}  // namespace forgeyard
