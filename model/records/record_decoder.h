#pragma once

#include "model/records/stored_bytes.h"

namespace forgeyard {

// The records of a project file as values; ProjectRecords tells their form. What can't be read stays in it as
// bytes, and `kept` says what and why. encodeProject() makes the same bytes of them.
RecordNode decodeProject(const StorageBytes& root, std::vector<LoadOmission>& kept);

}  // namespace forgeyard
