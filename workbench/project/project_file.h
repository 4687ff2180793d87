#pragma once

#include <optional>
#include <string>

#include "platform/com/status.h"
#include "platform/files/host_location.h"

namespace forgeyard::workbench {

// A project file as the module wants it named.
struct ProjectFile {
  std::string host;   // absolute host path, for messages
  BString directory;  // model path
  BString name;       // without directory

  // The whole model path.
  BString path() const;
};

// Whether only names that end in ".nqp" will do.
enum class FileNames : bool { OfProjects, Any };

// The file of that host path, as typed. Throws a Failure for a path that the model can't spell and for a name
// that won't do. It need not exist.
ProjectFile projectFile(const std::string& path, FileNames names = FileNames::OfProjects);

// The file that a command works on: the named one, else the one project file of the current directory. Throws
// a Failure that says what there is instead.
ProjectFile existingProjectFile(const std::string& path, FileNames names = FileNames::OfProjects);

// Whether the current directory has any.
bool isProjectFileHere();

// Why a project file could not be written, as a whole message.
std::string saveFailure(const ProjectFile& file, HRESULT status);

// Why a project file could not be made, as a whole message.
std::string creationFailure(const ProjectFile& file);

// Why a project file could not be opened, as a whole message.
std::string openFailure(const ProjectFile& file, HRESULT status);

}  // namespace forgeyard::workbench
