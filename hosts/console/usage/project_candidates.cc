#include "hosts/console/usage/project_candidates.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "platform/text/fold.h"
#include "workbench/project/properties.h"
#include "workbench/session/targets.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

namespace fs = std::filesystem;

constexpr const char* kTarget = "Target";

// What stands between a typed path and the next slash, as shells walk through directories. A directory with
// one thing in it is walked through.
Candidates nextSteps(const std::vector<std::string>& paths, std::string typed) {
  for (;;) {
    std::set<std::string> steps;
    for (const std::string& path : paths) {
      if (!path.starts_with(typed)) continue;
      const std::size_t slash = path.find('/', typed.size());
      steps.insert(path.substr(0, slash == path.npos ? slash : slash + 1));
    }
    if (steps.size() == 1 && steps.begin()->ends_with('/') && *steps.begin() != typed) {
      typed = *steps.begin();
      continue;
    }
    Candidates result;
    for (const std::string& step : steps) result.push_back({step, "", step.ends_with('/')});
    return result;
  }
}

Candidates properties(const PropertySource& source, std::vector<std::string> (*list)(const TypeInfo&),
                      bool open) {
  Candidates result;
  for (const TypeInfo* type : source.types) {
    for (const std::string& name : list(*type)) {
      if (source.typeOf(name) == type)
        result.push_back({name + (open ? "=" : ""), propertyHelp(*type, name), open});
    }
  }
  return result;
}

// The properties that can be set, or what one of them can be set to.
Candidates assignments(const PropertySource& source, const std::string& typed) {
  const std::size_t sign = typed.find('=');
  if (sign == typed.npos) return properties(source, writableProperties, true);
  const std::string property = typed.substr(0, sign);
  const TypeInfo* type = source.typeOf(property);
  if (!type) return {};
  Candidates result;
  for (const ValueChoice& choice : valueChoices(*type, property))
    result.push_back({choice.value, choice.help});
  // A text as it stands, to be changed.
  if (result.empty()) result.push_back({source.text(property), "as it is", true});
  for (Candidate& one : result) one.text.insert(0, property + "=");
  return result;
}

}  // namespace

Candidates components(ProjectContents& contents, std::string_view kindName) {
  Candidates result;
  const std::vector<NamedComponent> all = contents.components();
  for (const NamedComponent& one : all) {
    if (!kindName.empty() && (!one.kind || one.kind->name != kindName)) continue;
    const std::string help = one.kind ? one.kind->help : "a component";
    const auto same =
        std::count_if(all.begin(), all.end(), [&](const auto& other) { return other.name == one.name; });
    if (same == 1) {
      result.push_back({one.name, help});
    } else {
      result.push_back({"#" + std::to_string(one.id), one.name + ", " + help});
    }
  }
  return result;
}

Candidates configurations(ProjectContents& contents) {
  Candidates result;
  for (const auto& [name, target] : contents.configurations()) result.push_back({name, "target " + target});
  return result;
}

Candidates sourceFiles(ProjectContents& contents, const std::string& typed) {
  std::vector<std::string> paths;
  const fs::path here = fs::current_path();
  for (const std::string& host : contents.sourceFiles()) {
    paths.push_back(typed.starts_with('/') ? host : fs::path(host).lexically_relative(here).string());
    if (typed.starts_with("./")) paths.back().insert(0, "./");
  }
  return nextSteps(paths, typed);
}

Candidates targets(const Registry& registry) {
  Candidates result;
  for (const Target& target : registeredTargets(registry)) result.push_back({target.name, target.compiler});
  return result;
}

Candidates componentProperties(ProjectContents& contents, const std::string& component) {
  return properties(contents.propertiesOf(component), readableProperties, false);
}

Candidates componentAssignments(ProjectContents& contents, const std::string& component,
                                const std::string& typed) {
  return assignments(contents.propertiesOf(component), typed);
}

Candidates configurationAssignments(ProjectContents& contents, const std::string& typed) {
  const std::size_t sign = typed.find('=');
  const std::string target = std::string(kTarget) + "=";
  if (sign == typed.npos || !equalFoldedAscii(std::string_view(typed).substr(0, sign), kTarget)) {
    Candidates result = assignments(contents.configurationProperties(), typed);
    if (sign == typed.npos) result.push_back({target, "what it builds for", true});
    return result;
  }
  Candidates result = targets(contents.registry());
  for (Candidate& one : result) one.text.insert(0, target);
  return result;
}

Candidates projects(ProjectContents& contents) {
  Candidates result;
  for (const WorkspaceProject& project : contents.workspace()) result.push_back({project.name, project.file});
  return result;
}

}  // namespace forgeyard::console
