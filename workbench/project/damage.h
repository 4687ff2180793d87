#pragma once

#include <string>

#include "workbench/project/project_file.h"
#include "workbench/session/session.h"

namespace forgeyard::workbench {

inline constexpr const char* kStoreDamaged = "Storing the project now loses that part for good. Store it?";

// Tells the host what the project's last load left out, line by line. Whether there was anything.
bool reportOmissions(Host& host, IProject& project, const ProjectFile& file);

// Asks the user to go on with what could be read; throws a Failure when the answer is no.
void requireConsent(Host& host, const ProjectFile& file, const std::string& question);

}  // namespace forgeyard::workbench
