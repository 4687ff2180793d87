#pragma once

#include <string>
#include <vector>

#include "workbench/export/native_run.h"
#include "workbench/plan/build_plan.h"

namespace forgeyard::workbench {

// A run with all that it must wait for.
struct ExportedRun : NativeRun {
  std::vector<std::string> alsoReads;  // files that count as its inputs by the user's word
  std::string depfile;                 // where the compiler tells its headers; empty if nothing does
};

struct ExportedComponent {
  std::string name;
  std::vector<std::size_t> after;  // places of those that feed it, in the plan
  std::vector<ExportedRun> runs;
};

// A whole build, in the order of its components, for a file of another build system. Paths are relative to
// the project's directory where they lie in it, as are those in arguments.
struct ExportPlan {
  std::string project;                   // name
  std::string configuration;             // name
  std::vector<std::string> directories;  // that commands count on
  std::vector<ExportedComponent> components;
};

// Throws a Failure that names what can't be built without this system.
ExportPlan exportPlanOf(OpenProject& project);

// The compilations alone, with absolute paths; the host is told of those that can't be told. Throws a
// Failure if there is none.
std::vector<NativeRun> compilationsOf(OpenProject& project);

// The project's directory as a host path.
std::string directoryOf(IProject& project);

}  // namespace forgeyard::workbench
