#include "hosts/console/plan/why.h"

#include <algorithm>

#include "hosts/console/base/nearest.h"
#include "hosts/console/base/words.h"
#include "hosts/console/plan/build_plan.h"
#include "hosts/console/plan/plan_json.h"
#include "hosts/console/plan/reasons.h"
#include "hosts/console/project/source_files.h"
#include "platform/paths/no_break_space.h"

namespace forgeyard::console {

namespace {

// A run is named by its file, or else by what it makes.
std::string subjectOf(const PlannedRun& run, const ProjectPaths& paths) {
  if (!run.file.isNull()) return paths.toUser(run.file);
  std::vector<std::string> outputs;
  for (const BString& output : run.outputs) outputs.push_back(paths.toUser(output));
  return outputs.empty() ? "all inputs" : enumeration(outputs);
}

bool contains(const std::vector<BString>& names, const BString& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

class Explanation {
 public:
  Explanation(OpenProject& project, LineWriter& out)
      : project_(project), out_(out), plan_(planOf(project, E_TASK_BUILD)), paths_(project.project()) {}

  void all(bool upToDateToo) {
    for (const ComponentPlan& entry : plan_.components) component(entry, upToDateToo);
  }
  // All of that name; false if there is no such component, or no such file.
  bool component(const std::string& name);
  bool file(const BString& name);

  // All that can be asked for.
  std::vector<std::string> names() const;
  const ProjectPaths& paths() const { return paths_; }

 private:
  void component(const ComponentPlan& entry, bool upToDateToo);
  void head(const ComponentPlan& entry);
  void run(const std::string& where, const ComponentPlan& entry, const PlannedRun& run);
  bool json() const { return project_.session().options().json; }
  std::string summary(const ComponentPlan& entry) const;
  bool concerns(const PlannedRun& run, const ComponentPlan& entry, const BString& name);
  std::vector<BString> dependenciesOf(const BString& file) const;
  bool dependsOn(const BString& file, const BString& name) const;

  OpenProject& project_;
  LineWriter& out_;
  ProjectPlan plan_;
  ProjectPaths paths_;
};

std::string Explanation::summary(const ComponentPlan& entry) const {
  if (!entry.reached) return reasonNotReached(entry);
  if (!entry.plan.problems.empty()) return "would fail before it runs a tool";
  if (entry.plan.inputs.empty()) return "no inputs to build";
  if (entry.needed == 0) return "up to date, " + counted(entry.plan.inputs.size(), "input");
  if (entry.plan.runs.front().file.isNull())
    return "would run once for " + counted(entry.plan.inputs.size(), "input");
  return "would run for " + std::to_string(entry.needed) + " of " + counted(entry.plan.runs.size(), "file");
}

void Explanation::run(const std::string& where, const ComponentPlan& entry, const PlannedRun& run) {
  if (json()) return writeRun(out_, entry.component, run, paths_);
  out_.line(where + subjectOf(run, paths_) + ": " + reasonFor(run, paths_) + ".");
}

void Explanation::head(const ComponentPlan& entry) {
  if (json()) return writeComponent(out_, entry, paths_);
  out_.line(entry.component.name + ": " + summary(entry) + ".");
  for (const BString& problem : entry.plan.problems) out_.line("  " + problem.narrow());
}

void Explanation::component(const ComponentPlan& entry, bool upToDateToo) {
  head(entry);
  for (const PlannedRun& planned : entry.plan.runs) {
    if (planned.staleness || upToDateToo) run("  ", entry, planned);
  }
}

bool Explanation::component(const std::string& name) {
  bool found = false;
  for (const ComponentPlan& entry : plan_.components) {
    if (entry.component.name != name) continue;
    component(entry, true);
    found = true;
  }
  return found;
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

// As what goes in, as what comes out, or as what is read beside.
bool Explanation::concerns(const PlannedRun& run, const ComponentPlan& entry, const BString& name) {
  if (run.file == name || contains(run.outputs, name)) return true;
  if (!run.file.isNull()) return dependsOn(run.file, name);
  return std::any_of(entry.plan.inputs.begin(), entry.plan.inputs.end(),
                     [&](const BString& input) { return input == name || dependsOn(input, name); });
}

bool Explanation::file(const BString& name) {
  bool found = false;
  for (const ComponentPlan& entry : plan_.components) {
    const bool without = contains(entry.plan.inputs, name) && entry.plan.runs.empty();
    if (without) head(entry);
    found = found || without;
    for (const PlannedRun& planned : entry.plan.runs) {
      if (!concerns(planned, entry, name)) continue;
      run(entry.component.name + ", ", entry, planned);
      found = true;
    }
  }
  return found;
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

// What there is to say of a folder, or of a file that no component takes.
bool explainUnused(OpenProject& project, const std::string& name, const BString& path) {
  LineWriter& out = project.session().output();
  for (const FolderContents& folder : foldersOf(project.project())) {
    if (folder.folder.name == name) {
      out.line(name + ": a folder runs nothing; it feeds " + counted(folder.files.size(), "file") +
               " to what is connected to it.");
      return true;
    }
    const bool inside = std::any_of(folder.files.begin(), folder.files.end(),
                                    [&](const ProjectSource& file) { return file.name == path; });
    if (!inside) continue;
    out.line(name + ": no component takes this file of folder " + folder.folder.name +
             ", and none is known to read it.");
    return true;
  }
  return false;
}

}  // namespace

ExitCode explain(OpenProject& project, const std::string& name) {
  Session& session = project.session();
  Explanation explanation(project, session.output());
  if (name.empty()) {
    explanation.all(session.options().verbose);
    return session.finish();
  }
  if (explanation.component(name)) return session.finish();
  const BString path = explanation.paths().toProject(name);
  if (!explanation.file(path) && !explainUnused(project, name, path)) {
    throw Failure(name + " is no component of the project, nor a file that a build of it looks at." +
                  suggestion(name, explanation.names(), "names"));
  }
  return session.finish();
}

}  // namespace forgeyard::console
