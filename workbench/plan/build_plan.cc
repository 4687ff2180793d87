#include "workbench/plan/build_plan.h"

#include <algorithm>
#include <numeric>

#include "workbench/base/failure.h"
#include "workbench/project/configurations.h"
#include "workbench/project/connections.h"

namespace forgeyard::workbench {

namespace {

std::size_t neededRuns(const PlannedComponent& plan) {
  return static_cast<std::size_t>(std::count_if(plan.runs.begin(), plan.runs.end(),
                                                [](const PlannedRun& run) { return bool(run.staleness); }));
}

std::vector<PlannedComponent> ask(OpenProject& project, e_task task) {
  const Ref<IBuildPlan> planner = query<IBuildPlan>(&project.session().tool());
  if (!planner) throw Failure("This module can't tell what a build would do.");
  const ActiveFor active(project.project(), project.configuration());
  std::vector<PlannedComponent> planned;
  require(planner->PlanBuild(task, &planned), "What a build would do can't be told");
  return planned;
}

// What no failing component lies upstream of waits for nothing: only a circle, which a damaged file can have,
// keeps it out of a build.
void findWaiting(ProjectPlan& plan, IProject& project) {
  const std::vector<Ref<IConnection>> connections = connectionsOf(project);
  const auto entryOf = [&](const Ref<IComponent>& component) {
    return std::find_if(plan.components.begin(), plan.components.end(), [&](const ComponentPlan& entry) {
      return sameObject(entry.component.object.get(), component.get());
    });
  };
  const auto fails = [](const ComponentPlan& entry) {
    return entry.reached ? !entry.plan.problems.empty() : !entry.inCircle;
  };
  for (bool found = true; found;) {
    found = false;
    for (const Ref<IConnection>& connection : connections) {
      Ref<IComponent> from;
      Ref<IComponent> to;
      check(connection->get_From(&from));
      check(connection->get_To(&to));
      const auto source = entryOf(from);
      const auto sink = entryOf(to);
      const auto end = plan.components.end();
      if (source == end || sink == end || !sink->inCircle || !fails(*source)) continue;
      sink->inCircle = false;
      found = true;
    }
  }
}

}  // namespace

ComponentState stateOf(const ComponentPlan& entry) {
  if (!entry.reached) return entry.inCircle ? ComponentState::LeftOut : ComponentState::Waits;
  if (!entry.plan.problems.empty()) return ComponentState::Fails;
  if (entry.plan.inputs.empty()) return ComponentState::NoInputs;
  return entry.needed == 0 ? ComponentState::UpToDate : ComponentState::OutOfDate;
}

const char* toText(ComponentState state) {
  static constexpr const char* kNames[] = {"up-to-date", "out-of-date", "no-inputs",
                                           "fails",      "waits",       "left-out"};
  return kNames[static_cast<std::size_t>(state)];
}

std::string stateWords(const ComponentPlan& entry) {
  switch (stateOf(entry)) {
    case ComponentState::UpToDate:
      return "up to date";
    case ComponentState::OutOfDate:
      return entry.plan.runs.front().file.isNull() ? "out of date"
                                                   : std::to_string(entry.needed) + " out of date";
    case ComponentState::NoInputs:
      return "no inputs to build";
    case ComponentState::Fails:
      return "can't run";
    case ComponentState::Waits:
      return "waits for what feeds it";
    case ComponentState::LeftOut:
      return "left out, connected in a circle";
  }
  return "";
}

std::string reasonNotReached(const ComponentPlan& entry) {
  return entry.inCircle ? "would be left out: its connections go in a circle"
                        : "would not be started: what feeds it fails";
}

std::size_t ProjectPlan::needed() const {
  return std::accumulate(components.begin(), components.end(), std::size_t{0},
                         [](std::size_t sum, const ComponentPlan& entry) { return sum + entry.needed; });
}

bool ProjectPlan::hasProblems() const {
  return std::any_of(components.begin(), components.end(), [](const ComponentPlan& entry) {
    const ComponentState state = stateOf(entry);
    return state == ComponentState::Fails || state == ComponentState::Waits;
  });
}

std::vector<std::string> problemsIn(const ProjectPlan& plan) {
  std::vector<std::string> lines;
  for (const ComponentPlan& entry : plan.components) {
    for (const BString& problem : entry.plan.problems)
      lines.push_back(entry.component.name + ": " + problem.narrow());
    if (!entry.reached) lines.push_back(entry.component.name + " " + reasonNotReached(entry) + ".");
  }
  return lines;
}

ProjectPlan planOf(OpenProject& project, e_task task) {
  project.requireSettings();
  std::vector<Component> tools = componentsOf(project.project());
  std::erase_if(tools, [](const Component& component) { return component.kindName() == kFolderKind; });
  ProjectPlan result;
  for (PlannedComponent& planned : ask(project, task)) {
    const auto tool = std::find_if(tools.begin(), tools.end(), [&](const Component& component) {
      return sameObject(component.object.get(), planned.component.get());
    });
    if (tool == tools.end()) continue;
    const std::size_t needed = neededRuns(planned);
    result.components.push_back({std::move(*tool), true, false, std::move(planned), needed});
    tools.erase(tool);
  }
  // In a task for some files alone, or a clean, some components have no part.
  if (task != E_TASK_BUILD && task != E_TASK_REBUILD) return result;
  for (Component& tool : tools) result.components.push_back({std::move(tool), false, true, {}, 0});
  findWaiting(result, project.project());
  return result;
}

}  // namespace forgeyard::workbench
