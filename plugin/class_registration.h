#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/com/guid.h"

namespace forgeyard {

// One line of what the registry says of a class.
struct RegistryEntry {
  std::string key;                  // in full
  std::string name;                 // empty for the unnamed value
  std::optional<std::string> text;  // nothing: the key alone
};

// A class as the registry knows it.
struct RegisteredClass {
  Guid clsid;
  const char* name;  // "Project"

  // The keys that belong to the class alone, with all below.
  std::string classKey() const;
  std::string programKey() const;           // KV.Project
  std::string versionedProgramKey() const;  // KV.Project.1

  // Everything that is entered for the class, served by the module at that host path.
  std::vector<RegistryEntry> entries(const std::string& modulePath) const;
};

// The classes that are registered, each once, in the order of the object map.
const std::vector<RegisteredClass>& registeredClasses();

}  // namespace forgeyard
