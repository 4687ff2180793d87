#pragma once

#include <string>

#include "typelib/build_plan.h"
#include "workbench/project/project_paths.h"

namespace forgeyard::workbench {

// A file time in local time, to the millisecond: "2031-05-17 14:03:22.250".
std::string timeText(FileTime time);

// Why the run is out of date, or that it isn't, in words: "obj/a.o is missing". No full stop at the end.
std::string reasonFor(const PlannedRun& run, const ProjectPaths& paths);

// The same as one word for programs: "output-missing", "up-to-date".
const char* reasonName(Staleness::Why why);

}  // namespace forgeyard::workbench
