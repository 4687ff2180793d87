#pragma once

#include "platform/storage/structured_storage.h"
#include "typelib/records.h"

namespace forgeyard {

// The records of an open project file, of which nothing is changed: as they stand there, and what a load from
// that path brings up. Throws StatusError where nothing can be read.
ProjectRecords readProjectRecords(IStorage& root, const BString& path);
// Those of the project file at the path.
ProjectRecords readProjectRecords(const BString& path);
// Writes a project file of these records. An existing one is replaced only with `replace`, else the result is
// STG_E_FILEALREADYEXISTS. E_INVALIDARG for records that no file can hold, with *fault saying which.
HRESULT writeProjectRecords(const BString& path, const RecordNode& records, bool replace, RecordFault* fault);

}  // namespace forgeyard
