#include "workbench/project/workspace.h"

#include <algorithm>
#include <filesystem>

#include "platform/com/class_table.h"
#include "platform/paths/shell_path.h"
#include "typelib/classes.h"
#include "typelib/records.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/project/collections.h"
#include "workbench/project/damage.h"

namespace forgeyard::workbench {

namespace {

// The names of the objects' storages in a workspace.
constexpr const char16_t* kToolStorage = u"BuildTool";
constexpr const char16_t* kWorkspaceStorage = u"Workspace";

ProjectFile projectFileOf(const BString& directory, const BString& name) {
  ProjectFile file{"", directory, name};
  file.host = spelledHost(file.path()).value_or(file.path().narrow());
  return file;
}

Ref<IWorkspaceRecords> recordsReader(const Session& session) {
  Ref<IWorkspaceRecords> reader = query<IWorkspaceRecords>(&session.tool());
  if (!reader) throw Failure("This module can't look into workspaces.");
  return reader;
}

}  // namespace

std::string nameOf(IProject& project) {
  BString name;
  check(project.get_Name(&name));
  return name.narrow();
}

ProjectFile fileOf(IProject& project) {
  BString directory;
  BString name;
  check(project.get_WorkingDirectory(&directory));
  check(project.get_FileName(&name));
  return projectFileOf(directory, name);
}

bool isFile(IProject& project, const std::string& path) {
  std::error_code error;
  const std::string host = fileOf(project).host;
  return host == path || std::filesystem::equivalent(host, path, error);
}

bool isLoaded(IProject& project) {
  std::int32_t loaded = 0;
  check(project.get_Loaded(&loaded));
  return loaded != 0;
}

std::vector<WorkspaceProject> workspaceProjects(const Selection& selection, IWorkspaceRecords& reader) {
  const std::string file = WorkspaceFile::fileFor(selection.workspace);
  const Ref<IStorage> root = WorkspaceFile::openToRead(file);
  if (!root && !selection.workspace.empty()) throw Failure("There is no workspace " + file + ".");
  Ref<IStorage> storage;
  std::vector<WorkspaceProject> projects;
  if (!root || failed(root->OpenStorage(kToolStorage, STGM_READ | STGM_SHARE_EXCLUSIVE, &storage)))
    return projects;
  WorkspaceRecords records;
  WorkspaceFile::requireWhole(reader.ReadProjects(storage.get(), &records), file);
  for (const StoredWorkspaceProject& stored : records.projects) {
    projects.push_back({stored.name.narrow(), projectFileOf(stored.workingDirectory, stored.fileName).host,
                        stored.loaded, projects.size() == records.active});
  }
  return projects;
}

std::vector<WorkspaceProject> workspaceProjects(const Session& session) {
  return workspaceProjects(session.selection(), *recordsReader(session));
}

ProjectFile chosenProjectFile(const Session& session, FileNames names) {
  return chosenProjectFile(session.selection(), *recordsReader(session), &session.host(), names);
}

ProjectFile chosenProjectFile(const Selection& selection, IWorkspaceRecords& reader, Host* host,
                              FileNames names) {
  const bool workspaceNamed = !selection.workspace.empty();
  if (!selection.project.empty() || (!workspaceNamed && isProjectFileHere()))
    return existingProjectFile(selection.project, names);
  if (!WorkspaceFile::fileFor(selection.workspace).empty()) {
    for (const WorkspaceProject& project : workspaceProjects(selection, reader)) {
      if (!project.active) continue;
      ProjectFile file = existingProjectFile(project.file, names);
      if (host) host->note("Working on " + file.host + ", the active project of the workspace.");
      return file;
    }
  }
  if (workspaceNamed)
    throw Failure("The workspace " + selection.workspace +
                  " has no project yet. Add one: forgeyard workspace add FILE.nqp -w " + selection.workspace);
  return existingProjectFile("", names);
}

Workspace::Workspace(Session& session)
    : session_(session), file_(WorkspaceFile::fileFor(session.selection().workspace)) {
  file_.attach(query<IPersistStorage>(&session.tool()).get(), kToolStorage);
  if (const auto object = createInstance<IPersistStorage>(CLSID_WorkspaceLO))
    file_.attach(object.get(), kWorkspaceStorage);
  reportProjects();
}

void Workspace::reportProjects() const {
  for (const Ref<IProject>& project : projects()) {
    const Ref<IProjectReport> report = project.as<IProjectReport>();
    const ProjectFile file = fileOf(*project);
    if (report && failed(report->loadFailure())) {
      session_.host().tell(openFailure(file, report->loadFailure()) + " The project is not loaded.");
    } else if (isLoaded(*project) && reportOmissions(session_.host(), *project, file)) {
      check(project->ProjectClose());
      session_.host().tell(
          file.host +
          " is damaged, so it is not loaded. To load what is left of it: forgeyard workspace load \"" +
          nameOf(*project) + "\"");
    }
  }
}

std::vector<Ref<IProject>> Workspace::projects() const {
  Ref<IProjects> projects;
  check(session_.tool().get_Projects(&projects));
  return elementsOf<IProject>(*projects);
}

Ref<IProject> Workspace::find(const std::string& name) const {
  const std::vector<Ref<IProject>> all = projects();
  if (name.empty()) {
    Ref<IProject> active;
    check(session_.tool().get_ActiveProject(&active));
    if (active) return active;
    throw Failure("The workspace has no project yet. Add one: forgeyard workspace add FILE.nqp");
  }
  std::vector<Ref<IProject>> found;
  std::copy_if(all.begin(), all.end(), std::back_inserter(found),
               [&](const Ref<IProject>& project) { return nameOf(*project) == name; });
  if (found.empty()) {
    std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                 [&](const Ref<IProject>& project) { return isFile(*project, name); });
  }
  if (found.size() == 1) return found.front();
  std::vector<std::string> known;
  for (const Ref<IProject>& project : found.empty() ? all : found)
    known.push_back(found.empty() ? nameOf(*project) : fileOf(*project).host);
  if (found.empty())
    throw Failure("There is no project " + name + " in the workspace." + suggestion(name, known, "projects"));
  throw Failure("There are several projects " + name + ": " + enumeration(known) + ". Name the file.");
}

void Workspace::load(IProject& project) const {
  const ProjectFile file = fileOf(project);
  const HRESULT status = project.ProjectLoad();
  if (failed(status)) {
    const Ref<IProjectReport> report = query<IProjectReport>(&project);
    throw Failure(
        openFailure(file, report && failed(report->loadFailure()) ? report->loadFailure() : status));
  }
  if (reportOmissions(session_.host(), project, file)) requireConsent(session_.host(), file, kStoreDamaged);
}

void Workspace::save() {
  file_.save();
  std::vector<std::string> unsaved;
  for (const Ref<IProject>& project : projects()) {
    const Ref<IProjectReport> report = project.as<IProjectReport>();
    if (!report || succeeded(report->saveFailure())) continue;
    session_.host().tell(saveFailure(fileOf(*project), report->saveFailure()));
    unsaved.push_back(nameOf(*project));
  }
  if (!unsaved.empty()) throw Failure("The workspace was stored, but not " + enumeration(unsaved) + ".");
}

}  // namespace forgeyard::workbench
