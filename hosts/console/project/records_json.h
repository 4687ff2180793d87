#pragma once

#include <string>

#include "typelib/records.h"

namespace forgeyard::console {

// The records of a project file as JSON, indented by two, without a line feed at the end. Flags that are
// stored in a byte are true and false, those in 32 bits numbers; "left_out" stands only where something was.
// Throws StatusError. `file` is the file's name without directory.
std::string recordsAsJson(const std::string& file, const ProjectRecords& records);

}  // namespace forgeyard::console
