#pragma once

#include <string>
#include <vector>

#include "hosts/console/project/project_file.h"
#include "hosts/console/services/workspace_file.h"
#include "hosts/console/session/session.h"
#include "typelib/records.h"

namespace forgeyard::console {

// What a workspace says about one of its projects.
struct WorkspaceProject {
  std::string name;
  std::string file;  // host path
  bool loaded = true;
  bool active = false;
};

// The projects of the workspace that the options name, else of the user's own, which need not exist. No
// project is loaded and nothing is held; the reader stays as it is. Throws a Failure.
std::vector<WorkspaceProject> workspaceProjects(const Options& options, IWorkspaceRecords& reader);
std::vector<WorkspaceProject> workspaceProjects(Session& session);

// The project file that a command works on: the one that the options name; else, unless they name a
// workspace, the only one in the current directory; else the active project of the workspace, which a line
// tells. Throws a Failure that says what there is instead.
ProjectFile chosenProjectFile(const Options& options, IWorkspaceRecords& reader,
                              FileNames names = FileNames::OfProjects);
ProjectFile chosenProjectFile(Session& session, FileNames names = FileNames::OfProjects);

// A workspace at work: its projects stand in the session's build tool, loaded where they were when it was
// stored. A project that can't be loaded any more, or not as a whole, is not loaded, which a line tells: what
// can't be read is so never written. Nothing is stored but by save(). Main thread only.
class Workspace {
 public:
  // The one that the options name, else the user's own; made where there is none. Throws a Failure.
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

}  // namespace forgeyard::console
