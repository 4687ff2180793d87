#pragma once

#include "model/records/stored_bytes.h"

namespace forgeyard {

// The bytes of a project file with these records, whose form ProjectRecords tells. Throws RecordFaultError
// for values that can't be stored.
StorageBytes encodeProject(const RecordNode& records);

}  // namespace forgeyard
