#pragma once

#include "hosts/console/import/import_request.h"
#include "hosts/console/import/notes.h"

namespace forgeyard::console {

// What the compilation database of the request is to become: sources with equal options are compiled by one
// component. `request.target` becomes the one whose compiler the database has, if none is asked for. Throws a
// Failure.
ProjectParts partsOfDatabase(ImportRequest& request, const Registry& registry, Notes& notes);

}  // namespace forgeyard::console
