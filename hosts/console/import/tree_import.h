#pragma once

#include "hosts/console/import/import_request.h"
#include "hosts/console/import/notes.h"

namespace forgeyard::console {

// What the source tree of the request is to become: all its sources compiled alike, with the include paths
// that they need. Throws a Failure.
ProjectParts partsOfTree(const ImportRequest& request, Notes& notes);

}  // namespace forgeyard::console
