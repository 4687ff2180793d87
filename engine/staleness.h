#pragma once

#include <span>
#include <vector>

#include "engine/run/dependency_times.h"
#include "typelib/build_plan.h"

namespace forgeyard {

// An input of a run and what else the outputs depend on: entries as the model stores them. The lists belong
// to the caller.
struct StalenessInput {
  BString file;
  std::span<const BString> manualDependencies{};
  std::span<const BString> automaticDependencies{};
};

// An output that is also a dependency is rewritten in place, so file times can't decide: the time of a marker
// file is compared instead.
struct InPlaceOutput {
  BString output;
  BString marker;
};

// What is known of a run of a tool before it is decided whether the run is needed.
struct StalenessQuestion {
  bool taskRunsAll = false;
  bool settingsChanged = false;
  // The tool reads more than is known of, so that file times prove nothing.
  bool dependenciesUnknown = false;
  BString component;  // names the markers
  std::span<const StalenessInput> inputs;
  std::span<const BString> outputs;
};

// Whether the run is needed, and why: the first reason found. Reads the times that it needs and changes no
// file. Appends to `inPlace` the outputs that are rewritten in place, as far as the decision had to look.
Staleness staleness(const StalenessQuestion& question, DependencyTimes& times,
                    std::vector<InPlaceOutput>& inPlace);

// The marker to compare in place of the output; null if the output is none of the dependencies.
BString markerOf(const BString& output, const StalenessQuestion& question, const DependencyTimes& times);

// Whether two paths are one file in a system that ignores case.
bool sameFile(const BString& a, const BString& b);

}  // namespace forgeyard
