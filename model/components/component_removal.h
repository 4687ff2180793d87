#pragma once

#include "model/connections/connections.h"
#include "model/core/project_core.h"

namespace forgeyard {

// Removes a component from a project with its connections and its part of the file, once the user has agreed.
// Success where the user declines; general failure for a component that the project hasn't got. `connections`
// may be null. Main thread only.
HRESULT removeComponent(ProjectCore& project, CConnections* connections, IUnknown* component);

}  // namespace forgeyard
