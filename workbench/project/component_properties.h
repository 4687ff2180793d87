#pragma once

#include <span>
#include <string>
#include <vector>

#include "typelib/configuration.h"
#include "workbench/base/failure.h"
#include "workbench/project/components.h"
#include "workbench/project/properties.h"

namespace forgeyard::workbench {

// Where a component's properties lie: its settings in one configuration, and the component itself.
struct PropertyHolders {
  Ref<IDispatch> settings;  // null for a component without
  Ref<IDispatch> own;       // null for a kind that the command line doesn't know

  // The one that has the property; null if neither does.
  IDispatch* readable(const std::string& property) const;
  IDispatch* writable(const std::string& property) const;
  // All names that `list` gives, each once, the component's own first.
  std::vector<std::string> names(std::vector<std::string> (*list)(IDispatch&)) const;
};

PropertyHolders holdersOf(const Component& component, IConfiguration& configuration);

Failure unknownProperty(const Component& component, const std::string& property,
                        const std::vector<std::string>& names);

// Changes properties, and others that follow from them, between BeforeSettings and AfterSettings of the
// component. Throws a Failure.
void setProperties(IProject& project, const Component& component, IConfiguration& configuration,
                   std::span<const Assignment> assignments);

}  // namespace forgeyard::workbench
