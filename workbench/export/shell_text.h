#pragma once

#include <string>
#include <vector>

#include "workbench/export/export_plan.h"

namespace forgeyard::workbench {

// The argument as a shell takes it for itself. Throws a Failure for a line end, which no rule can carry.
std::string shellQuoted(const std::string& argument);

// The run as one shell command in the project's directory. A step with a depfile writes it.
std::string shellCommand(const ExportedRun& run);

// A name for each component that a rule can have: made of letters, digits and "-", unlike each other and
// unlike every output.
std::vector<std::string> ruleNames(const ExportPlan& plan, std::vector<std::string> taken);

// The directories of what the run makes, each once.
std::vector<std::string> outputDirectories(const ExportedRun& run);
// Directories that must be there before the run: those, and what commands count on.
std::vector<std::string> directoriesFor(const ExportPlan& plan, const ExportedRun& run);

}  // namespace forgeyard::workbench
