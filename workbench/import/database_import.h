#pragma once

#include "workbench/import/import_request.h"
#include "workbench/import/notes.h"
#include "workbench/session/host.h"

namespace forgeyard::workbench {

// What the compilation database of the request is to become: sources with equal options are compiled by one
// component. `request.target` becomes the one whose compiler the database has, if none is asked for. Throws a
// Failure.
ProjectParts partsOfDatabase(ImportRequest& request, const Registry& registry, Host& host, Notes& notes);

}  // namespace forgeyard::workbench
