#pragma once

#include <string>
#include <vector>

#include "workbench/export/export_plan.h"

namespace forgeyard::workbench {

// The texts of exported files. Each throws a Failure for a name that its format can't express.

// One entry a line, in the order of the build. `directory` is where the commands run.
std::string compileCommandsText(const std::string& directory, const std::vector<NativeRun>& compilations);

// Rules for ninja, and for GNU make from 4.3 on, to be run in the project's directory. `file` is the name of
// the file that they will be in, from there.
std::string ninjaText(const ExportPlan& plan);
// The sources whose lists of headers ninja can't read, so that it compiles them each time.
std::vector<std::string> unreadableForNinja(const ExportPlan& plan);
std::string makeText(const ExportPlan& plan, const std::string& file);

// The line that begins the files for ninja and make, and tells them from a user's own.
inline constexpr const char* kExportMark = "# Made by forgeyard export ";

}  // namespace forgeyard::workbench
