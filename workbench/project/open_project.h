#pragma once

#include <string>
#include <vector>

#include "typelib/configuration.h"
#include "typelib/project.h"
#include "workbench/project/project_file.h"
#include "workbench/session/session.h"

namespace forgeyard::workbench {

// The project that a command works on, loaded into the build tool and active there. It is closed with the
// session; what has not been saved by then is gone, and the file stands as it was. Main thread only.
class OpenProject {
 public:
  // The one that is selected. Throws a Failure that says which file and why. What a damaged file has
  // lost is told to the host.
  explicit OpenProject(Session& session);
  // A new one with a configuration "Default". Throws a Failure; the file is written by save() alone.
  static OpenProject create(Session& session, const ProjectFile& file, const std::string& name);

  Session& session() const { return session_; }
  IProject& project() const { return *project_; }
  const ProjectFile& file() const { return file_; }

  // The configuration that is selected, else the active one. Throws a Failure with what there is.
  Ref<IConfiguration> configuration() const;
  // Whether a part of the file was left out in loading.
  bool isIncomplete() const { return incomplete_; }
  // Asks the user to go on with what could be read; throws a Failure when the answer is no. Does nothing when
  // all of the file is there.
  void requireConsentIfIncomplete(const std::string& question) const;

  // Throws a Failure when a tool has no settings in the configuration at work: no task could start then.
  void requireSettings() const;

  // Into a list of projects that stays: loaded, stored under the name that the file has, and active there
  // if no other project is. Throws a Failure.
  static void insert(Session& session, const ProjectFile& file);

  // Writes the file. Throws a Failure when it could not be written: then it stands as it was. Asks before a
  // part that could not be read is lost for good.
  void save();
  // Whether it has been called, and has written the file.
  bool wasSaved() const { return saved_; }

 private:
  OpenProject(Session& session, ProjectFile file);
  void load();

  Session& session_;
  ProjectFile file_;
  Ref<IProject> project_;
  bool incomplete_ = false;
  bool saved_ = false;
};

}  // namespace forgeyard::workbench
