#pragma once

#include <string>
#include <vector>

#include "typelib/build_plan.h"
#include "workbench/project/components.h"
#include "workbench/project/open_project.h"

namespace forgeyard::workbench {

// A tool component in a plan.
struct ComponentPlan {
  Component component;
  bool reached = true;    // false: nothing below is known, since what feeds it has problems
  bool inCircle = false;  // or since builds leave it out
  PlannedComponent plan;
  std::size_t needed = 0;  // runs that are out of date
};

enum class ComponentState { UpToDate, OutOfDate, NoInputs, Fails, Waits, LeftOut };
ComponentState stateOf(const ComponentPlan& entry);
// For programs: "up-to-date", "out-of-date", "no-inputs", "fails", "waits", "left-out".
const char* toText(ComponentState state);
// For people: "2 out of date".
std::string stateWords(const ComponentPlan& entry);

// Of a component that is not reached: "would not be started: what feeds it fails".
std::string reasonNotReached(const ComponentPlan& entry);

// What a task would do with the project, in the configuration that the options name: the tool components in
// the order of the build, behind them those that it would not get to.
struct ProjectPlan {
  std::vector<ComponentPlan> components;

  std::size_t needed() const;
  bool hasProblems() const;
};

// Runs nothing and stores nothing. Throws a Failure.
ProjectPlan planOf(OpenProject& project, e_task task);

// What keeps components from running, a line each.
std::vector<std::string> problemsIn(const ProjectPlan& plan);

}  // namespace forgeyard::workbench
