#pragma once

#include <string>

#include "workbench/project/components.h"
#include "workbench/project/open_project.h"

namespace forgeyard::workbench {

// New components, made the way that a user does it: the module asks in a dialog, which gets these answers.
// The name must be free. Both throw a Failure; nothing is stored.

Component addFolder(OpenProject& project, const std::string& name, const std::string& filter);
Component addTool(OpenProject& project, const ComponentKind& kind, const std::string& name);

}  // namespace forgeyard::workbench
