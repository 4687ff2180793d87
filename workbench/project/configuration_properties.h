#pragma once

#include <string>

#include "typelib/configuration.h"
#include "typelib/project.h"
#include "workbench/project/properties.h"
#include "workbench/session/session.h"

namespace forgeyard::workbench {

// Throws a Failure if the name is empty or another configuration's.
void requireFreeConfigurationName(IProject& project, const std::string& name,
                                  IConfiguration* except = nullptr);

// Changes one property, the target among them, between BeforeSettings and AfterSettings of the configuration.
// Warns of a target that the registry doesn't have. Throws a Failure.
void setProperty(const Session& session, IProject& project, IConfiguration& configuration,
                 const Assignment& assignment);

}  // namespace forgeyard::workbench
