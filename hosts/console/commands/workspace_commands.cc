// workspace list, add, remove, use, unload, load, save and reload.

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "hosts/console/commands/command.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/project/open_project.h"
#include "workbench/project/workspace.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;
namespace fs = std::filesystem;

// Which project is meant stands in the command itself.
void refuseOptions(const Invocation& invocation) {
  if (!invocation.options().project.empty() || !invocation.options().configuration.empty())
    throw Failure("-p and -c choose what a command works on; this one works on the workspace.");
}

ExitCode list(const Invocation& invocation) {
  refuseOptions(invocation);
  Session session(invocation.options());
  const std::vector<WorkspaceProject> projects = workspaceProjects(session);
  const auto widthOf = [](const std::string& name) { return BString::fromNarrow(name).size(); };
  std::size_t width = 0;
  for (const WorkspaceProject& project : projects) width = std::max(width, widthOf(project.name));
  for (const WorkspaceProject& project : projects) {
    std::error_code error;
    const char* state = !fs::exists(project.file, error) ? "missing" : project.loaded ? "" : "not loaded";
    if (session.options().json) {
      writeObject(session.output(), "workspace_project",
                  {{"project", project.name},
                   {"file", project.file},
                   {"active", project.active},
                   {"state", *state ? state : "loaded"}});
      continue;
    }
    const std::string name = project.name + std::string(width - widthOf(project.name), ' ');
    session.output().line((project.active ? "* " : "  ") + name + "  " + project.file + (*state ? "  " : "") +
                          state);
  }
  return session.finish();
}

ExitCode add(const Invocation& invocation) {
  refuseOptions(invocation);
  const ProjectFile file = existingProjectFile(invocation.text("FILE"));
  Session session(invocation.options());
  Workspace workspace(session);
  for (const Ref<IProject>& project : workspace.projects()) {
    if (isFile(*project, file.host))
      throw Failure(file.host + " is in the workspace already: " + nameOf(*project) + ".");
  }
  OpenProject::insert(session, file);
  workspace.save();
  return ExitCode::Success;
}

ExitCode remove(const Invocation& invocation) {
  refuseOptions(invocation);
  Session session(invocation.options());
  Workspace workspace(session);
  const std::size_t before = workspace.projects().size();
  const Ref<IProject> leaving = workspace.find(invocation.text("NAME"));
  const Ref<IProject> active = workspace.find("");
  // The command of that name works on the active project, and chooses the next one.
  check(session.tool().put_ActiveProject(leaving.get()));
  if (session.host().commands().run(u"ProjectRemove") != CommandOutcome::Ran)
    throw Failure(nameOf(*leaving) + " can't be removed.");
  if (workspace.projects().size() == before)
    return session.host().frame().refusedForWantOfTerminal() ? ExitCode::Failure : ExitCode::Success;
  if (active != leaving) check(session.tool().put_ActiveProject(active.get()));
  workspace.save();
  return ExitCode::Success;
}

ExitCode use(const Invocation& invocation) {
  refuseOptions(invocation);
  Session session(invocation.options());
  Workspace workspace(session);
  const Ref<IProject> chosen = workspace.find(invocation.text("NAME"));
  const std::string name = nameOf(*chosen);
  for (const Ref<IProject>& project : workspace.projects()) {
    if (project == chosen) break;
    if (nameOf(*project) == name)
      throw Failure("A workspace knows its active project by name, and " + fileOf(*project).host +
                    " has the name " + name + " too. Remove one of them.");
  }
  check(session.tool().put_ActiveProject(chosen.get()));
  workspace.save();
  return ExitCode::Success;
}

// A command on one project, the active one if none is named.
template <class Work>
ExitCode onProject(const Invocation& invocation, Work&& work) {
  refuseOptions(invocation);
  Session session(invocation.options());
  Workspace workspace(session);
  const Ref<IProject> project = workspace.find(invocation.text("NAME"));
  work(workspace, *project);
  workspace.save();
  return ExitCode::Success;
}

ExitCode unload(const Invocation& invocation) {
  return onProject(invocation, [](Workspace&, IProject& project) {
    if (isLoaded(project)) check(project.ProjectClose());
  });
}

ExitCode load(const Invocation& invocation) {
  return onProject(invocation, [](Workspace& workspace, IProject& project) {
    if (!isLoaded(project)) workspace.load(project);
  });
}

ExitCode reload(const Invocation& invocation) {
  return onProject(invocation, [](Workspace& workspace, IProject& project) {
    if (isLoaded(project)) check(project.ProjectClose());
    workspace.load(project);
  });
}

ExitCode save(const Invocation& invocation) {
  refuseOptions(invocation);
  Session session(invocation.options());
  Workspace(session).save();
  return ExitCode::Success;
}

constexpr Parameter kProject{Kind::OptionalText, "NAME", "",
                             "the project, or its file; left out: the active one", Completes::Project};
constexpr Parameter kNamedProject{Kind::Text, "NAME", "", "the project, or its file", Completes::Project};

constexpr std::array kCommands{
    Command{"workspace list", "Show the projects with their files; \"*\" marks the active one", {}, list},
    Command{"workspace add",
            "Put a project into the workspace; the first one becomes the active one",
            {{{Kind::Text, "FILE", "", "the project file", Completes::ProjectFile}}},
            add},
    Command{"workspace remove",
            "Take a project out of the workspace, its file stays; asks first",
            {{kNamedProject}},
            remove},
    Command{"workspace use", "Make a project the active one", {{kNamedProject}}, use},
    Command{"workspace unload", "Keep a project in the workspace without loading it", {{kProject}}, unload},
    Command{"workspace load", "Load a project again", {{kProject}}, load},
    Command{"workspace save", "Store the workspace with all projects that are loaded", {}, save},
    Command{"workspace reload", "Drop a project and load it from its file", {{kProject}}, reload},
};

}  // namespace

std::span<const Command> workspaceCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
