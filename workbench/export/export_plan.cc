#include "workbench/export/export_plan.h"

#include <algorithm>
#include <map>
#include <set>

#include "platform/files/host_location.h"
#include "typelib/folder.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/project/collections.h"
#include "workbench/project/configurations.h"
#include "workbench/project/connections.h"
#include "workbench/project/properties.h"
#include "workbench/project/workspace.h"

namespace forgeyard::workbench {

namespace {

// Makes the project's directory the one that paths count from.
class Relative {
 public:
  explicit Relative(std::string directory) : directory_(std::move(directory)) {}

  void apply(std::string& path) const { path = argument(path); }
  void apply(std::vector<std::string>& paths) const {
    for (std::string& path : paths) apply(path);
  }
  // A path may begin an argument, or stand behind an option's letters or a separator.
  std::string argument(const std::string& text) const {
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = text.find(directory_); at != text.npos; at = text.find(directory_, at + 1)) {
      const std::size_t end = at + directory_.size();
      const bool whole = end == text.size() || text[end] == '/';
      if (!whole || at < done || !begins(text, at)) continue;
      const std::size_t next = end + 1 < text.size() ? end + 1 : text.size();
      result.append(text, done, at - done);
      // A name that begins with a dash would be an option.
      if (next == text.size())
        result += '.';
      else if (text[next] == '-')
        result += "./";
      done = next;
    }
    return result.append(text, done);
  }

 private:
  static bool begins(const std::string& text, std::size_t at) {
    if (at == 0 || std::string_view("=,;:@").find(text[at - 1]) != std::string_view::npos) return true;
    return text.starts_with('-') && text.find('/') == at;
  }

  std::string directory_;
};

std::string modelDirectory(IConfiguration& configuration, const char* property) {
  std::string path = readProperty(configuration, property);
  std::replace(path.begin(), path.end(), '\\', '/');
  while (path.ends_with('/')) path.pop_back();
  return path;
}

class ExportMaker {
 public:
  explicit ExportMaker(OpenProject& project)
      : project_(project), relative_(workbench::directoryOf(project.project())) {}

  ExportPlan run() {
    const Ref<IConfiguration> configuration = project_.configuration();
    plan_.project = nameOf(project_.project());
    plan_.configuration = nameOf(*configuration);
    for (const char* property : {"OutputDirectory", "IntermediateDirectory"}) {
      std::string directory = modelDirectory(*configuration, property);
      relative_.apply(directory);
      if (!directory.empty() && directory != ".") plan_.directories.push_back(std::move(directory));
    }
    const ProjectPlan plan = planOf(project_, E_TASK_BUILD);
    requireWhole(plan);
    for (const ComponentPlan& entry : plan.components) add(entry);
    addOrder(plan);
    checkOutputs();
    return std::move(plan_);
  }

 private:
  void requireWhole(const ProjectPlan& plan) const {
    if (!plan.hasProblems()) return;
    for (const std::string& problem : problemsIn(plan)) project_.session().host().tell(problem);
    throw Failure("Nothing is exported, since the project can't be built.");
  }

  void add(const ComponentPlan& entry) {
    ExportedComponent component{entry.component.name, {}, {}};
    for (const PlannedRun& run : entry.plan.runs) {
      try {
        component.runs.push_back(exported(entry.plan, run));
      } catch (const Failure& failure) {
        throw Failure("The component " + entry.component.name + " can't be exported: " + failure.what() +
                      ".");
      }
    }
    plan_.components.push_back(std::move(component));
  }

  ExportedRun exported(const PlannedComponent& component, const PlannedRun& planned) {
    ExportedRun run;
    static_cast<NativeRun&>(run) = runs_.of(component, planned);
    for (const BString& input : planned.file.isNull() ? component.inputs : std::vector{planned.file})
      addManualDependencies(input, run.alsoReads);
    for (NativeStep& step : run.steps) {
      for (std::string& argument : step.arguments) argument = relative_.argument(argument);
      relative_.apply(step.standardOutput);
      relative_.apply(step.directory);
    }
    for (std::string* path : {&run.source, &run.object}) relative_.apply(*path);
    for (auto* paths : {&run.inputs, &run.outputs, &run.alsoReads}) relative_.apply(*paths);
    if (run.compiles) run.depfile = run.object + ".d";
    return run;
  }

  // Those that a compiler reports are its own to report again.
  void addManualDependencies(const BString& name, std::vector<std::string>& files) const {
    Ref<ISourceFile> source;
    check(project_.project().FindFileInProject(name, &source));
    if (!source) return;
    Ref<ISimpleCollection> manual;
    check(source->get_ManualDeps(&manual));
    Ref<IUnknown> unknown;
    check(manual->get__NewEnum(&unknown));
    forEach(unknown.as<IEnumVARIANT>(), [&](const Variant& value) {
      BString file;
      check(value.toText(&file));
      files.push_back(toHost(file).value_or(file.narrow()));
    });
  }

  void addOrder(const ProjectPlan& plan) {
    for (const Ref<IConnection>& connection : connectionsOf(project_.project())) {
      Ref<IComponent> from;
      Ref<IComponent> to;
      check(connection->get_From(&from));
      check(connection->get_To(&to));
      const std::size_t source = placeOf(plan, from.get());
      const std::size_t sink = placeOf(plan, to.get());
      if (source < plan.components.size() && sink < plan.components.size())
        plan_.components[sink].after.push_back(source);
    }
  }

  static std::size_t placeOf(const ProjectPlan& plan, IComponent* component) {
    const auto found = std::find_if(
        plan.components.begin(), plan.components.end(),
        [&](const ComponentPlan& entry) { return sameObject(entry.component.object.get(), component); });
    return static_cast<std::size_t>(found - plan.components.begin());
  }

  // What files of rules can't say.
  void checkOutputs() const {
    std::map<std::string, std::string> makers;
    for (const ExportedComponent& component : plan_.components) {
      for (const ExportedRun& run : component.runs) {
        for (const std::string& output : run.outputs) {
          if (std::find(run.inputs.begin(), run.inputs.end(), output) != run.inputs.end())
            throw Failure("The component " + component.name + " rewrites " + output +
                          ", which it reads: no rule can say that.");
          const auto [known, isNew] = makers.emplace(output, component.name);
          if (!isNew)
            throw Failure(output + " is made by " + known->second + " and by " + component.name +
                          ": a file has one rule only.");
        }
      }
    }
  }

  OpenProject& project_;
  Relative relative_;
  NativeRuns runs_;
  ExportPlan plan_;
};

}  // namespace

std::string directoryOf(IProject& project) {
  BString directory;
  check(project.get_WorkingDirectory(&directory));
  std::string path = spelledHost(directory).value_or(directory.narrow());
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

ExportPlan exportPlanOf(OpenProject& project) {
  return ExportMaker(project).run();
}

std::vector<NativeRun> compilationsOf(OpenProject& project) {
  const ProjectPlan plan = planOf(project, E_TASK_BUILD);
  for (const std::string& problem : problemsIn(plan)) project.session().host().tell(problem);
  NativeRuns runs;
  std::vector<NativeRun> compilations;
  for (const ComponentPlan& entry : plan.components) {
    for (const PlannedRun& planned : entry.plan.runs) {
      // What makes no object of one source is nothing to a tool that reads sources.
      if (planned.file.isNull() || entry.component.kindName() == "linker") continue;
      NativeRun run = runs.of(entry.plan, planned);
      if (run.compiles) compilations.push_back(std::move(run));
    }
  }
  if (compilations.empty()) throw Failure("The project compiles nothing, so there is nothing to export.");
  return compilations;
}

}  // namespace forgeyard::workbench
