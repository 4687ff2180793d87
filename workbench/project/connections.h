#pragma once

#include <vector>

#include "typelib/connection.h"
#include "workbench/project/components.h"

namespace forgeyard::workbench {

// The connections of the project, in its order.
std::vector<Ref<IConnection>> connectionsOf(IProject& project);

// Null if there is none that runs this way.
Ref<IConnection> connectionBetween(IProject& project, const Component& from, const Component& to);

// Throws a Failure if the connection would close a circle.
void addConnection(IProject& project, const Component& from, const Component& to);
// Throws a Failure.
void removeConnection(IProject& project, IConnection& connection);

}  // namespace forgeyard::workbench
