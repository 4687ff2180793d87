#pragma once

#include "workbench/import/import_request.h"
#include "workbench/import/notes.h"
#include "workbench/session/host.h"

namespace forgeyard::workbench {

// What the source tree of the request is to become: all its sources compiled alike, with the include paths
// that they need. Throws a Failure.
ProjectParts partsOfTree(const ImportRequest& request, Host& host, Notes& notes);

}  // namespace forgeyard::workbench
