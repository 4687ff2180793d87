#pragma once

#include <string>

#include "typelib/records.h"

namespace forgeyard::workbench {

// Whether all is told, or only what people enter: without what builds learn and what is left over.
enum class Detail : bool { All, Entered };

// The records of a project as JSON, indented by two, without a line feed at the end: one value on a line, so
// that a change is one. A text that is no valid UTF-16 becomes {"escaped": TEXT}, in which "%" and four
// hexadecimal digits stand for a unit. Beside "clsid" a component has its "kind". What could not be read at
// all stands at the end as "left_out".
std::string recordsAsJson(const ProjectRecords& records, Detail detail);

// What a load of the file brings up, as JSON.
std::string loadAsJson(const LoadResult& load);

// A value on one line.
std::string valueAsJson(const RecordNode& node);

}  // namespace forgeyard::workbench
