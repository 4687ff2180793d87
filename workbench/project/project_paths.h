#pragma once

#include <string>

#include "platform/text/bstring.h"
#include "typelib/project.h"

namespace forgeyard::workbench {

// Between the paths that a user types and sees and the names that files have in a project.
class ProjectPaths {
 public:
  explicit ProjectPaths(IProject& project);

  // The name that the project has, or would have, for a file: below the working directory in the very
  // spelling of that, also when the user came by another way (a link). Throws a Failure for a path that can't
  // be spelled.
  BString toProject(const std::string& path) const;

  // The same as an entry in the dependencies of a file: relative to the project's directory where it is below
  // that.
  BString toDependency(const std::string& path) const;

  // The host path of the project's directory.
  std::string directory() const;

  // The host path; relative to the project's directory for what lies below that.
  std::string toUser(const BString& name) const;
  std::string dependencyToUser(const BString& entry) const;

 private:
  std::u16string prefix_;      // the working directory with a backslash behind it
  std::string hostPrefix_;     // the same as a host path, with a slash
  std::string realDirectory_;  // without links; empty if it can't be told
};

}  // namespace forgeyard::workbench
