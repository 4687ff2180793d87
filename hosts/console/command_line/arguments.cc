#include "hosts/console/command_line/arguments.h"

#include <algorithm>

#include "hosts/console/commands/all_commands.h"
#include "hosts/console/commands/common_usage.h"

namespace forgeyard::console {

namespace {

constexpr char kGuard = '\x01';

bool takesValue(const std::string& argument) {
  const GlobalOption* option = globalOption(argument);
  return option && option->text;
}

// The positions of the words that are no options.
std::vector<std::size_t> wordPositions(const std::vector<std::string>& arguments) {
  std::vector<std::size_t> result;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (takesValue(arguments[i])) {
      ++i;
    } else if (!arguments[i].starts_with('-') || arguments[i] == "-") {
      result.push_back(i);
    }
  }
  return result;
}

}  // namespace

std::vector<std::string> guardedArguments(const std::vector<std::string>& typed) {
  std::vector<std::string> arguments;
  bool onlyOperands = false;
  for (std::string argument : typed) {
    onlyOperands = onlyOperands || argument == "--";
    if (argument.starts_with('[')) argument.insert(argument.begin(), kGuard);
    const bool emptyValue = !onlyOperands && argument.starts_with("--") && argument.ends_with('=');
    if (emptyValue) argument.pop_back();
    arguments.push_back(std::move(argument));
    if (emptyValue) arguments.emplace_back();
  }
  return arguments;
}

std::string unguarded(const std::string& argument) {
  return argument.starts_with(kGuard) ? argument.substr(1) : argument;
}

std::vector<std::string> commandWordsOf(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  for (const std::size_t position : wordPositions(arguments)) result.push_back(arguments[position]);
  return result;
}

std::vector<std::string> cutRest(std::vector<std::string>& arguments) {
  const std::vector<std::size_t> words = wordPositions(arguments);
  if (words.size() < 2) return {};
  const auto handsOn = [&](const Command* command) {
    return arguments[words[0]] == command->name && command->parameters[1].kind == Parameter::Kind::Rest;
  };
  const auto commands = allCommands();
  if (std::none_of(commands.begin(), commands.end(), handsOn)) return {};
  const auto behind = arguments.begin() + static_cast<std::ptrdiff_t>(words[1]) + 1;
  std::vector<std::string> rest(behind, arguments.end());
  arguments.erase(behind, arguments.end());
  return rest;
}

}  // namespace forgeyard::console
