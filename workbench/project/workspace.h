#pragma once

#include <string>
#include <vector>

#include "typelib/records.h"
#include "workbench/project/project_file.h"
#include "workbench/project/workspace_file.h"
#include "workbench/session/session.h"

namespace forgeyard::workbench {

// What a workspace says about one of its projects.
struct WorkspaceProject {
  std::string name;
  std::string file;  // host path
  bool loaded = true;
  bool active = false;
};

// The projects of the workspace that is selected, else of the user's own, which need not exist. No
// project is loaded and nothing is held; the reader stays as it is. Throws a Failure.
std::vector<WorkspaceProject> workspaceProjects(const Selection& selection, IWorkspaceRecords& reader);
std::vector<WorkspaceProject> workspaceProjects(const Session& session);

// The project file that a command works on: the one that is selected; else, unless a workspace is
// selected, the only one in the current directory; else the active project of the workspace, of which
// the host, if there is one, hears. Throws a Failure that says what there is instead.
ProjectFile chosenProjectFile(const Selection& selection, IWorkspaceRecords& reader, Host* host,
                              FileNames names = FileNames::OfProjects);
ProjectFile chosenProjectFile(const Session& session, FileNames names = FileNames::OfProjects);

// A workspace at work: its projects stand in the session's build tool, loaded where they were when it was
// stored. A project that can't be loaded any more, or not as a whole, is not loaded, which the host is told:
// what can't be read is so never written. Nothing is stored but by save(). Main thread only.
class Workspace {
 public:
  // The one that is selected, else the user's own; made where there is none. Throws a Failure.
  explicit Workspace(Session& session);

  std::vector<Ref<IProject>> projects() const;
  // By name or by file; the active one for an empty name. Throws a Failure that says what there is.
  Ref<IProject> find(const std::string& name) const;

  // Loads a project that isn't loaded. Throws a Failure; asks first if a part of the file can't be read.
  void load(IProject& project) const;
  // Writes all loaded projects and the workspace. Throws a Failure that says what could not be written.
  void save();

 private:
  void reportProjects() const;

  Session& session_;
  WorkspaceFile file_;
};

std::string nameOf(IProject& project);
ProjectFile fileOf(IProject& project);
// Whether it is the project of that file, by whatever path.
bool isFile(IProject& project, const std::string& path);
bool isLoaded(IProject& project);

}  // namespace forgeyard::workbench
