#include "hosts/console/command_line/usage_message.h"

#include <algorithm>

#include "hosts/console/command_line/arguments.h"
#include "hosts/console/commands/all_commands.h"
#include "hosts/console/commands/common_usage.h"
#include "workbench/base/nearest.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

void addOnce(std::vector<std::string>& names, const std::string& name) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
}

// Whether an option of that form may stand on a command's line; null for a line that names no command.
bool isOption(const std::string& form, const Command* command) {
  if (globalOption(form) || form == "-h" || form == "--help" || form == "--version") return true;
  if (!command) return false;
  return std::any_of(command->parameters.begin(), command->parameters.end(),
                     [&](const Parameter& parameter) { return isFormOf(form, parameter); });
}

std::vector<std::string> optionNames(const Command* command) {
  std::vector<std::string> names;
  if (command) {
    for (const Parameter& parameter : command->parameters) {
      if (parameter.kind == Kind::Option || parameter.kind == Kind::Flag)
        names.emplace_back(longForm(parameter.name));
    }
  }
  for (const GlobalOption& option : globalOptions()) names.emplace_back(longForm(option.row.name));
  return names;
}

const Command* commandNamed(const std::vector<std::string>& given) {
  for (const Command* command : allCommands()) {
    const bool whole = hasGroup(command->name)
                           ? given.size() > 1 && command->name == given[0] + " " + given[1]
                           : !given.empty() && command->name == given[0];
    if (whole) return command;
  }
  return nullptr;
}

// The first option that is none; empty if that is not the fault.
std::string wrongOption(const std::vector<std::string>& arguments) {
  const Command* command = commandNamed(commandWordsOf(arguments));
  for (const std::string& argument : arguments) {
    if (argument == "--") break;
    if (!argument.starts_with('-') || argument == "-") continue;
    const bool brief = !argument.starts_with("--");
    const std::string form = brief ? argument.substr(0, 2) : argument.substr(0, argument.find('='));
    if (isOption(form, command)) continue;
    const auto near = brief ? std::nullopt : nearest(form, optionNames(command));
    return (command ? std::string(command->name) + " has" : "There is") + " no option " + form + "." +
           (near ? " Did you mean " + *near + "?" : " Try the same with --help.");
  }
  return "";
}

// What is wrong with the command's own words; empty if that is not the fault.
std::string wrongCommand(const std::vector<std::string>& arguments) {
  const std::vector<std::string> given = commandWordsOf(arguments);
  if (given.empty()) return "";
  std::vector<std::string> firsts;
  std::vector<std::string> seconds;
  for (const Command* command : allCommands()) {
    if (command->hidden && command->name != given[0]) continue;
    addOnce(firsts, firstWord(command->name));
    if (hasGroup(command->name) && firstWord(command->name) == given[0])
      seconds.push_back(lastWord(command->name));
  }
  if (std::find(firsts.begin(), firsts.end(), given[0]) == firsts.end()) {
    const auto near = nearest(given[0], firsts);
    return "There is no command " + given[0] + "." +
           (near ? " Did you mean " + *near + "?" : " forgeyard --help shows the commands.");
  }
  if (seconds.empty()) return "";
  if (given.size() == 1) return "Behind " + given[0] + " comes one of these: " + enumeration(seconds) + ".";
  if (std::find(seconds.begin(), seconds.end(), given[1]) != seconds.end()) return "";
  return "There is no command " + given[0] + " " + given[1] + "." + suggestion(given[1], seconds, "commands");
}

}  // namespace

std::string usageMessage(const std::vector<std::string>& arguments, const CLI::ParseError& error) {
  std::string message = wrongCommand(arguments);
  if (message.empty()) message = wrongOption(arguments);
  const bool nothingAsked =
      commandWordsOf(arguments).empty() && dynamic_cast<const CLI::RequiredError*>(&error);
  if (nothingAsked && message.empty()) message = "What is to be done? forgeyard --help shows the commands.";
  if (message.empty()) message = std::string(error.what()) + ". Try the same with --help.";
  return message;
}

}  // namespace forgeyard::console
