#pragma once

#include <string>
#include <vector>

#include "typelib/configuration.h"
#include "typelib/project.h"

namespace forgeyard::console {

std::string nameOf(IConfiguration& configuration);

// In the project's order.
std::vector<Ref<IConfiguration>> configurationsOf(IProject& project);

// By name. Throws a Failure that lists what there is or suggests the nearest.
Ref<IConfiguration> findConfiguration(IProject& project, const std::string& name);

// The value of the cookie "Target"; empty if there is none.
std::string targetOf(IConfiguration& configuration);

}  // namespace forgeyard::console
