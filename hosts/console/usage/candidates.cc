#include "hosts/console/usage/candidates.h"

#include <algorithm>

#include "hosts/console/commands/all_commands.h"
#include "hosts/console/usage/project_candidates.h"
#include "platform/text/fold.h"
#include "typelib/type_library.h"
#include "workbench/session/registered_classes.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

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

Candidates componentKindNames() {
  Candidates result;
  for (const ComponentKind& kind : componentKinds()) {
    if (kind.name != kFolderKind) result.push_back({kind.name, kind.help});
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
      return components(contents, kFolderKind);
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
      return componentProperties(contents, line.argument("COMPONENT"));
    case Completes::Assignment:
      return componentAssignments(contents, line.argument("COMPONENT"), line.value());
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
