#include "workbench/plan/explanation.h"

#include <algorithm>

#include "platform/paths/no_break_space.h"
#include "workbench/base/nearest.h"
#include "workbench/base/words.h"
#include "workbench/project/source_files.h"

namespace forgeyard::workbench {

namespace {

bool contains(const std::vector<BString>& names, const BString& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

ExplainedComponent withRuns(const ComponentPlan& entry, bool upToDateToo) {
  ExplainedComponent explained{&entry, {}};
  for (const PlannedRun& run : entry.plan.runs) {
    if (run.staleness || upToDateToo) explained.runs.push_back(&run);
  }
  return explained;
}

}  // namespace

Explanation::Explanation(OpenProject& project)
    : project_(project), plan_(planOf(project, E_TASK_BUILD)), paths_(project.project()) {}

std::vector<ExplainedComponent> Explanation::all(bool upToDateToo) const {
  std::vector<ExplainedComponent> explained;
  for (const ComponentPlan& entry : plan_.components) explained.push_back(withRuns(entry, upToDateToo));
  return explained;
}

std::vector<ExplainedComponent> Explanation::ofComponent(const std::string& name) const {
  std::vector<ExplainedComponent> explained;
  for (const ComponentPlan& entry : plan_.components) {
    if (entry.component.name == name) explained.push_back(withRuns(entry, true));
  }
  return explained;
}

std::vector<BString> Explanation::dependenciesOf(const BString& file) const {
  const Ref<IBuildPlan> planner = query<IBuildPlan>(&project_.session().tool());
  std::vector<BString> dependencies;
  check(planner->GetDependencies(file, &dependencies));
  return dependencies;
}

bool Explanation::dependsOn(const BString& file, const BString& name) const {
  const std::vector<BString> dependencies = dependenciesOf(file);
  return contains(dependencies, name) || contains(dependencies, withNoBreakSpaces(name));
}

bool Explanation::concerns(const PlannedRun& run, const ComponentPlan& entry, const BString& name) const {
  if (run.file == name || contains(run.outputs, name)) return true;
  if (!run.file.isNull()) return dependsOn(run.file, name);
  return std::any_of(entry.plan.inputs.begin(), entry.plan.inputs.end(),
                     [&](const BString& input) { return input == name || dependsOn(input, name); });
}

std::vector<ExplainedComponent> Explanation::ofFile(const BString& name) const {
  std::vector<ExplainedComponent> explained;
  for (const ComponentPlan& entry : plan_.components) {
    ExplainedComponent part{&entry, {}};
    for (const PlannedRun& run : entry.plan.runs) {
      if (concerns(run, entry, name)) part.runs.push_back(&run);
    }
    const bool without = contains(entry.plan.inputs, name) && entry.plan.runs.empty();
    if (without || !part.runs.empty()) explained.push_back(std::move(part));
  }
  return explained;
}

std::optional<std::string> Explanation::ofUnused(const std::string& name, const BString& path) const {
  for (const FolderContents& folder : foldersOf(project_.project())) {
    if (folder.folder.name == name)
      return name + ": a folder runs nothing; it feeds " + counted(folder.files.size(), "file") +
             " to what is connected to it.";
    const bool inside = std::any_of(folder.files.begin(), folder.files.end(),
                                    [&](const ProjectSource& file) { return file.name == path; });
    if (inside)
      return name + ": no component takes this file of folder " + folder.folder.name +
             ", and none is known to read it.";
  }
  return std::nullopt;
}

std::vector<std::string> Explanation::names() const {
  std::vector<std::string> names;
  const auto add = [&](const std::vector<BString>& files) {
    for (const BString& file : files) names.push_back(paths_.toUser(file));
  };
  for (const ComponentPlan& entry : plan_.components) {
    names.push_back(entry.component.name);
    add(entry.plan.inputs);
    add(entry.plan.outputs);
    for (const BString& input : entry.plan.inputs) add(dependenciesOf(input));
  }
  for (const FolderContents& folder : foldersOf(project_.project())) {
    names.push_back(folder.folder.name);
    for (const ProjectSource& file : folder.files) names.push_back(paths_.toUser(file.name));
  }
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

std::string Explanation::summary(const ComponentPlan& entry) {
  if (!entry.reached) return reasonNotReached(entry);
  if (!entry.plan.problems.empty()) return "would fail before it runs a tool";
  if (entry.plan.inputs.empty()) return "no inputs to build";
  if (entry.needed == 0) return "up to date, " + counted(entry.plan.inputs.size(), "input");
  if (entry.plan.runs.front().file.isNull())
    return "would run once for " + counted(entry.plan.inputs.size(), "input");
  return "would run for " + std::to_string(entry.needed) + " of " + counted(entry.plan.runs.size(), "file");
}

std::string Explanation::subject(const PlannedRun& run) const {
  if (!run.file.isNull()) return paths_.toUser(run.file);
  std::vector<std::string> outputs;
  for (const BString& output : run.outputs) outputs.push_back(paths_.toUser(output));
  return outputs.empty() ? "all inputs" : enumeration(outputs);
}

}  // namespace forgeyard::workbench
