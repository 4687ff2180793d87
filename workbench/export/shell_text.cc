#include "workbench/export/shell_text.h"

#include <algorithm>
#include <cctype>
#include <set>

#include "workbench/base/failure.h"
#include "workbench/import/source_names.h"

namespace forgeyard::workbench {

namespace {

bool isPlain(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
         std::string_view("_-+./,:@%=").find(c) != std::string_view::npos;
}

std::string stepText(const NativeStep& step) {
  std::string text;
  for (const std::string& argument : step.arguments)
    text += (text.empty() ? "" : " ") + shellQuoted(argument);
  // A word with "=" in front would set a variable.
  if (!step.standardOutput.empty()) text += " > " + shellQuoted(step.standardOutput);
  if (!step.directory.empty()) text = "(cd " + shellQuoted(step.directory) + " && " + text + ")";
  return text;
}

}  // namespace

std::string shellQuoted(const std::string& argument) {
  if (argument.find_first_of("\n\r") != argument.npos)
    throw Failure("An argument with a line end in it can't stand in a rule: " + argument);
  if (!argument.empty() && std::all_of(argument.begin(), argument.end(), isPlain)) return argument;
  std::string quoted = "'";
  for (const char c : argument) {
    if (c == '\'') quoted += "'\\'";
    quoted += c;
  }
  return quoted + "'";
}

std::string shellCommand(const ExportedRun& run) {
  std::string text;
  for (NativeStep step : run.steps) {
    if (!run.depfile.empty()) step.arguments.insert(step.arguments.end(), {"-MD", "-MF", run.depfile});
    text += (text.empty() ? "" : " && ") + stepText(step);
  }
  return text;
}

std::vector<std::string> ruleNames(const ExportPlan& plan, std::vector<std::string> taken) {
  std::set<std::string> known(taken.begin(), taken.end());
  for (const ExportedComponent& component : plan.components) {
    for (const ExportedRun& run : component.runs) {
      known.insert(run.outputs.begin(), run.outputs.end());
      known.insert(run.inputs.begin(), run.inputs.end());
    }
  }
  std::vector<std::string> names;
  for (const ExportedComponent& component : plan.components) {
    std::string base = component.name;
    std::replace_if(
        base.begin(), base.end(), [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; },
        '-');
    std::string name = base;
    for (int number = 2; !known.insert(name).second; ++number) name = base + "-" + std::to_string(number);
    names.push_back(std::move(name));
  }
  return names;
}

std::vector<std::string> outputDirectories(const ExportedRun& run) {
  std::set<std::string> directories;
  for (const std::string& output : run.outputs) {
    if (const std::string_view directory = directoryName(output); !directory.empty())
      directories.emplace(directory);
  }
  return {directories.begin(), directories.end()};
}

std::vector<std::string> directoriesFor(const ExportPlan& plan, const ExportedRun& run) {
  const std::vector<std::string> own = outputDirectories(run);
  std::set<std::string> directories(own.begin(), own.end());
  // The component's own tools write what is named; a command of the user's may write anything.
  if (!run.compiles) directories.insert(plan.directories.begin(), plan.directories.end());
  return {directories.begin(), directories.end()};
}

}  // namespace forgeyard::workbench
