#pragma once

#include <memory>
#include <string>
#include <vector>

#include "typelib/build_plan.h"

namespace forgeyard::workbench {

// One program that a run starts. Paths are host paths.
struct NativeStep {
  std::vector<std::string> arguments;  // the program first
  std::string standardOutput;          // the file that takes it; may be empty
  std::string directory;               // where it runs; empty: the project's
};

// A run of a build with the programs that it comes down to in the end, adapters and the spawner left out.
struct NativeRun {
  std::string source;  // empty: one run for all inputs
  std::vector<std::string> inputs;
  std::vector<std::string> outputs;
  std::vector<NativeStep> steps;  // each only after the one before has succeeded
  // A GNU compiler driver makes an object of the source; its step is the only one.
  bool compiles = false;
  std::string object;
};

// Takes planned runs apart the way that the spawner and the adapters do. Main thread only.
class NativeRuns {
 public:
  NativeRuns();
  ~NativeRuns();
  NativeRuns(const NativeRuns&) = delete;
  NativeRuns& operator=(const NativeRuns&) = delete;

  // Throws a Failure that says what can't be done without the adapter.
  NativeRun of(const PlannedComponent& component, const PlannedRun& run);

 private:
  class Reader;
  std::unique_ptr<Reader> reader_;
};

}  // namespace forgeyard::workbench
