#pragma once

#include "platform/storage/structured_storage.h"
#include "typelib/records.h"

namespace forgeyard {

// The records of an open project file, of which nothing is changed: as they stand there, and what a load from
// that path brings up. Throws StatusError where nothing can be read.
ProjectRecords readProjectRecords(IStorage& root, const BString& path);

}  // namespace forgeyard
