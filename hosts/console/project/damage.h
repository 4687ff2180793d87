#pragma once

#include <string>

#include "hosts/console/project/project_file.h"
#include "hosts/console/session/session.h"

namespace forgeyard::console {

inline constexpr const char* kStoreDamaged = "Storing the project now loses that part for good. Store it?";

// Tells what the project's last load left out, line by line. Whether there was anything.
bool reportOmissions(IProject& project, const ProjectFile& file);

// Asks the user to go on with what could be read; throws a Failure when the answer is no.
void requireConsent(Session& session, const ProjectFile& file, const std::string& question);

}  // namespace forgeyard::console
