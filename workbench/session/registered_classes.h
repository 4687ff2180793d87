#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/com/guid.h"
#include "platform/registry/registry.h"

namespace forgeyard::workbench {

// A class as the registry has it.
struct RegisteredClass {
  Guid clsid;
  std::string program;  // "KV.BuildTool"; empty if it has no name for people
  std::string module;   // host path of the module that serves it
};

// The classes that a host creates by itself at its start: those with both categories, Loaded Object and I Use
// Commands, in the registry's order.
std::vector<RegisteredClass> loadedObjectClasses(const Registry& registry);

// All classes, in the registry's order.
std::vector<RegisteredClass> registeredClasses(const Registry& registry);

// The identifier of the class "KV.Project", "KV.Project.1" or "{5164...}"; the null one when the registry has
// none of that name.
Guid classNamed(const Registry& registry, std::string_view name);

}  // namespace forgeyard::workbench
