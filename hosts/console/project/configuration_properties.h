#pragma once

#include <string>

#include "hosts/console/project/properties.h"
#include "hosts/console/session/session.h"
#include "typelib/configuration.h"
#include "typelib/project.h"

namespace forgeyard::console {

// Throws a Failure if the name is empty or another configuration's.
void requireFreeConfigurationName(IProject& project, const std::string& name,
                                  IConfiguration* except = nullptr);

// Changes one property, the target among them, between BeforeSettings and AfterSettings of the configuration.
// Warns of a target that the registry doesn't have. Throws a Failure.
void setProperty(const Session& session, IProject& project, IConfiguration& configuration,
                 const Assignment& assignment);

}  // namespace forgeyard::console
