#include "hosts/console/usage/candidates.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "hosts/console/commands/all_commands.h"
#include "hosts/console/project/properties.h"
#include "hosts/console/session/registered_classes.h"
#include "hosts/console/session/targets.h"
#include "hosts/console/usage/project_contents.h"
#include "platform/text/fold.h"
#include "typelib/type_library.h"

namespace forgeyard::console {

namespace {

namespace fs = std::filesystem;
using Candidates = std::vector<Candidate>;

constexpr const char* kTarget = "Target";

// Only the beginning of a text that is longer.
bool beginsFolded(std::string_view text, std::string_view beginning) {
  return text.size() >= beginning.size() && equalFoldedAscii(text.substr(0, beginning.size()), beginning);
}

// In any case only where nothing begins just as it was typed.
void keepMatching(Candidates& candidates, const std::string& typed) {
  const auto exactly = [&](const Candidate& one) { return one.text.starts_with(typed); };
  const bool any = std::any_of(candidates.begin(), candidates.end(), exactly);
  std::erase_if(candidates,
                [&](const Candidate& one) { return any ? !exactly(one) : !beginsFolded(one.text, typed); });
}

Candidates commandWords(const std::string& group) {
  Candidates result;
  for (const Command* command : allCommands()) {
    if (command->hidden) continue;
    if (group.empty() && !hasGroup(command->name)) {
      result.push_back({command->name, command->help});
    } else if (!group.empty() && hasGroup(command->name) && firstWord(command->name) == group) {
      result.push_back({lastWord(command->name), command->help});
    }
  }
  if (!group.empty()) return result;
  for (const CommandGroup& known : commandGroups()) result.push_back({known.name, known.help});
  return result;
}

Candidates options(const TypedLine& line) {
  Candidates result;
  for (const Parameter& row : line.optionsLeft()) {
    const std::string help(std::string_view(row.help).substr(0, std::string_view(row.help).find('\n')));
    result.push_back({std::string(longForm(row.name)), help});
    // The short one only for who asks for it: it would double the list.
    if (line.value() == "-" || line.value().starts_with("--") || shortForm(row.name).empty()) continue;
    result.push_back({std::string(shortForm(row.name)), help});
  }
  return result;
}

Candidates fixedWords(std::string_view words) {
  Candidates result;
  if (words.find('|') == words.npos) return result;
  while (!words.empty()) {
    const std::size_t end = std::min(words.find('|'), words.size());
    result.push_back({std::string(words.substr(0, end)), ""});
    words.remove_prefix(std::min(end + 1, words.size()));
  }
  return result;
}

// Those of that kind; all for none. A name that two have tells nothing: their numbers do.
Candidates components(ProjectContents& contents, std::string_view kindName = {}) {
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

// As a user in the current directory writes them: relative unless an absolute path was begun.
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

Candidates configurationAssignments(ProjectContents& contents, const std::string& typed) {
  const std::string target = std::string(kTarget) + "=";
  if (!beginsFolded(typed, target)) {
    Candidates result = assignments(contents.configurationProperties(), typed);
    if (typed.find('=') == typed.npos) result.push_back({target, "what it builds for", true});
    return result;
  }
  Candidates result = targets(contents.registry());
  for (Candidate& one : result) one.text.insert(0, target);
  return result;
}

Candidates interfaces() {
  Candidates result;
  for (const TypeInfo* type : typeLibrary()) result.push_back({type->name, ""});
  return result;
}

Candidates classes(const Registry& registry) {
  Candidates result;
  for (const RegisteredClass& one : registeredClasses(registry)) {
    if (!one.program.empty()) result.push_back({one.program, ""});
  }
  return result;
}

Candidates projects(ProjectContents& contents) {
  Candidates result;
  for (const WorkspaceProject& project : contents.workspace()) result.push_back({project.name, project.file});
  return result;
}

Candidates componentKindNames() {
  Candidates result;
  for (const ComponentKind& kind : componentKinds()) {
    if (kind.name != FOLDER_KIND) result.push_back({kind.name, kind.help});
  }
  return result;
}

Candidates names(const TypedLine& line, Completes what) {
  switch (what) {
    case Completes::ComponentKind:
      return componentKindNames();
    case Completes::Interface:
      return interfaces();
    case Completes::Command:
      return commandWords("");
    default:
      break;
  }
  ProjectContents contents(line.options());
  switch (what) {
    case Completes::Component:
      return components(contents);
    case Completes::Folder:
      return components(contents, FOLDER_KIND);
    case Completes::Configuration:
      return configurations(contents);
    case Completes::SourceFile:
      return sourceFiles(contents, line.value());
    case Completes::ComponentOrSourceFile: {
      Candidates all = components(contents);
      for (Candidate& file : sourceFiles(contents, line.value())) all.push_back(std::move(file));
      return all;
    }
    case Completes::Property:
      return properties(contents.propertiesOf(line.argument("COMPONENT")), readableProperties, false);
    case Completes::Assignment:
      return assignments(contents.propertiesOf(line.argument("COMPONENT")), line.value());
    case Completes::ConfigurationAssignment:
      return configurationAssignments(contents, line.value());
    case Completes::Target:
      return targets(contents.registry());
    case Completes::Project:
      return projects(contents);
    case Completes::Class:
      return classes(contents.registry());
    default:
      return {};
  }
}

Completion values(const TypedLine& line) {
  using Files = Completion::Files;
  switch (line.row().completes) {
    case Completes::Nothing:
      return {fixedWords(line.row().value)};
    case Completes::File:
      return {{}, Files::Any};
    case Completes::ProjectFile:
      return {{}, Files::Projects};
    case Completes::Directory:
      return {{}, Files::Directories};
    default:
      return {names(line, line.row().completes)};
  }
}

}  // namespace

Completion complete(const TypedLine& line) {
  Completion result;
  switch (line.wanted()) {
    case TypedLine::Wanted::Nothing:
      break;
    case TypedLine::Wanted::CommandWord:
      result.candidates = commandWords(line.group());
      break;
    case TypedLine::Wanted::Option:
      result.candidates = options(line);
      break;
    case TypedLine::Wanted::Value:
      result = values(line);
      break;
  }
  keepMatching(result.candidates, line.value());
  for (Candidate& one : result.candidates) one.text.insert(0, line.beforeValue());
  return result;
}

}  // namespace forgeyard::console
