#pragma once

#include <string>
#include <vector>

#include "typelib/configuration.h"
#include "typelib/project.h"

namespace forgeyard::workbench {

std::string nameOf(IConfiguration& configuration);

// In the project's order.
std::vector<Ref<IConfiguration>> configurationsOf(IProject& project);

// By name. Throws a Failure that lists what there is or suggests the nearest.
Ref<IConfiguration> findConfiguration(IProject& project, const std::string& name);

// The value of the cookie "Target"; empty if there is none.
std::string targetOf(IConfiguration& configuration);

// Makes another configuration active for its life time; what is active in the file stays so.
class ActiveFor {
 public:
  // Borrows the project.
  ActiveFor(IProject& project, const Ref<IConfiguration>& configuration);
  ActiveFor(const ActiveFor&) = delete;
  ActiveFor& operator=(const ActiveFor&) = delete;
  ~ActiveFor();

 private:
  IProject& project_;
  Ref<IConfiguration> before_;
};

}  // namespace forgeyard::workbench
