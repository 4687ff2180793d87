#include "hosts/console/cli.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "hosts/console/base/nearest.h"
#include "hosts/console/base/report.h"
#include "hosts/console/commands/all_commands.h"
#include "hosts/console/commands/common_usage.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/services/standard_output.h"

namespace forgeyard::console {

namespace {

using Kind = Parameter::Kind;

constexpr const char* kShortFooter =
    "\nAlso: -p FILE, -w FILE, -c CONFIGURATION, -y, -q, -v; see forgeyard --help.";

constexpr std::size_t kWidth = 100;

// One below the other as they fit, in lines of at most that width.
std::string wrapped(const std::string& text) {
  std::string result;
  std::size_t start = 0;
  while (text.size() - start > kWidth) {
    const std::size_t end = text.rfind(' ', start + kWidth);
    result += text.substr(start, end - start) + "\n";
    start = end + 1;
  }
  return result + text.substr(start);
}

std::string footer() {
  std::string codes = "Exit codes:";
  for (const UsageNote& code : exitCodes())
    codes += std::string(codes.ends_with(':') ? " " : "; ").append(code.name).append(" ").append(code.help);
  return "\nEvery option above may stand before or behind the command.\n" + wrapped(codes + ".");
}

// The parser takes "[a,b]" for a list and "--name=" for an option whose value follows. Neither is meant here.
constexpr char kGuard = '\x01';

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

// The row of a global option in one of its forms; null for none.
const GlobalOption* globalOption(std::string_view form) {
  for (const GlobalOption& option : globalOptions()) {
    if (form == shortForm(option.row.name) || form == longForm(option.row.name)) return &option;
  }
  return nullptr;
}

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

// Takes off what stands behind the one argument of a command that hands the rest on.
std::vector<std::string> cutRest(std::vector<std::string>& arguments) {
  const std::vector<std::size_t> words = wordPositions(arguments);
  if (words.size() < 2) return {};
  const auto handsOn = [&](const Command* command) {
    return arguments[words[0]] == command->name && command->parameters[1].kind == Kind::Rest;
  };
  const auto commands = allCommands();
  if (std::none_of(commands.begin(), commands.end(), handsOn)) return {};
  const auto behind = arguments.begin() + static_cast<std::ptrdiff_t>(words[1]) + 1;
  std::vector<std::string> rest(behind, arguments.end());
  arguments.erase(behind, arguments.end());
  return rest;
}

// The parser as the tables describe it, and which rows its parts stand for.
class CommandLine {
 public:
  explicit CommandLine(Options& options);

  // Throws CLI::ParseError.
  void parse(std::vector<std::string> arguments);
  // What a command that takes the rest of the line gets.
  void setRest(std::vector<std::string> rest) { rest_ = std::move(rest); }
  // Help or version, as asked for.
  std::string text(const CLI::Success& wish) const;
  // What was asked for.
  const Command& command() const { return *chosen_->command; }
  Invocation invocation(const Options& options) const;

 private:
  struct Leaf {
    const Command* command;
    CLI::App* app;
    std::vector<CLI::Option*> parameters;
  };

  void addGlobalOptions(Options& options);
  void addCommand(const Command& command);
  CLI::App& parentFor(const Command& command);
  static CLI::Option* addParameter(CLI::App& app, const Parameter& parameter);

  CLI::App app_{"Builds projects of source files, tools and what joins them.", "forgeyard"};
  std::map<std::string, CLI::App*, std::less<>> groups_;
  std::vector<Leaf> leaves_;
  const Leaf* chosen_ = nullptr;
  std::vector<std::string> rest_;  // of a command that takes it
};

CommandLine::CommandLine(Options& options) {
  app_.set_version_flag("--version", std::string("forgeyard ") + FORGEYARD_VERSION, "Show the version");
  app_.set_help_flag("-h,--help", "Show what there is; also behind a command");
  app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app_.get_formatter()->label("Subcommands", "Commands");
  app_.get_formatter()->column_width(28);
  app_.require_subcommand(1);
  app_.footer(footer());
  addGlobalOptions(options);
  for (const Command* command : allCommands()) addCommand(*command);
}

void CommandLine::addGlobalOptions(Options& options) {
  for (const GlobalOption& option : globalOptions()) {
    const Parameter& row = option.row;
    if (option.text) {
      app_.add_option(row.name, options.*option.text, row.help)->type_name(row.value);
    } else {
      app_.add_flag(row.name, options.*option.flag, row.help);
    }
  }
}

CLI::App& CommandLine::parentFor(const Command& command) {
  if (!hasGroup(command.name)) return app_;
  const std::string word = firstWord(command.name);
  if (const auto known = groups_.find(word); known != groups_.end()) return *known->second;
  const auto groups = commandGroups();
  const auto group =
      std::find_if(groups.begin(), groups.end(), [&](const auto& row) { return row.name == word; });
  CLI::App* made = app_.add_subcommand(word, group == groups.end() ? "" : group->help);
  made->require_subcommand(1)->fallthrough()->footer(kShortFooter);
  groups_.emplace(word, made);
  return *made;
}

CLI::Option* CommandLine::addParameter(CLI::App& app, const Parameter& parameter) {
  const CLI::callback_t keep = [](const CLI::results_t&) { return true; };
  if (parameter.kind == Kind::Flag) return app.add_flag(parameter.name, parameter.help);
  CLI::Option* option = app.add_option(parameter.name, keep, parameter.help);
  option->type_name(parameter.kind == Kind::Option ? parameter.value : "");
  if (parameter.kind == Kind::Texts || parameter.kind == Kind::Rest) {
    option->expected(1, CLI::detail::expected_max_vector_size)->allow_extra_args();
    option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  }
  option->required(parameter.kind == Kind::Text || parameter.kind == Kind::Texts);
  return option;
}

void CommandLine::addCommand(const Command& command) {
  CLI::App* app = parentFor(command).add_subcommand(lastWord(command.name), command.help);
  app->fallthrough()->footer(kShortFooter);
  if (command.hidden) app->group("");
  Leaf leaf{&command, app, {}};
  for (const Parameter& parameter : command.parameters) {
    if (parameter.kind != Kind::None) leaf.parameters.push_back(addParameter(*app, parameter));
  }
  leaves_.push_back(std::move(leaf));
}

void CommandLine::parse(std::vector<std::string> arguments) {
  std::reverse(arguments.begin(), arguments.end());
  app_.parse(std::move(arguments));
  for (const Leaf& leaf : leaves_) {
    if (leaf.app->parsed()) chosen_ = &leaf;
  }
}

std::string CommandLine::text(const CLI::Success& wish) const {
  std::ostringstream out;
  static_cast<void>(app_.exit(wish, out, out));
  return out.str();
}

Invocation CommandLine::invocation(const Options& options) const {
  Invocation invocation(options);
  std::size_t next = 0;
  for (const Parameter& parameter : chosen_->command->parameters) {
    if (parameter.kind == Kind::None) continue;
    for (const std::string& value : chosen_->parameters[next]->results())
      invocation.add(parameter.name, unguarded(value));
    if (parameter.kind == Kind::Rest) {
      for (const std::string& value : rest_) invocation.add(parameter.name, value);
    }
    ++next;
  }
  return invocation;
}

// The words that are no options: the command, as far as it can be told from a line that doesn't parse.
std::vector<std::string> words(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  for (const std::size_t position : wordPositions(arguments)) result.push_back(arguments[position]);
  return result;
}

void addOnce(std::vector<std::string>& names, const std::string& name) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
}

// Whether an option of that form may stand on a command's line; null for a line that names no command.
bool isOption(const std::string& form, const Command* command) {
  if (globalOption(form) || form == "-h" || form == "--help" || form == "--version") return true;
  if (!command) return false;
  return std::any_of(command->parameters.begin(), command->parameters.end(), [&](const Parameter& parameter) {
    return form == shortForm(parameter.name) || form == longForm(parameter.name);
  });
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
  const Command* command = commandNamed(words(arguments));
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
  const std::vector<std::string> given = words(arguments);
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

ExitCode show(const std::string& text) {
  LineWriter& out = standardOutput();
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) out.line(line);
  return finishOutput(out, ExitCode::Success);
}

ExitCode usageError(const std::vector<std::string>& arguments, const CLI::ParseError& error) {
  std::string message = wrongCommand(arguments);
  if (message.empty()) message = wrongOption(arguments);
  const bool nothingAsked = words(arguments).empty() && dynamic_cast<const CLI::RequiredError*>(&error);
  if (nothingAsked && message.empty()) message = "What is to be done? forgeyard --help shows the commands.";
  if (message.empty()) message = std::string(error.what()) + ". Try the same with --help.";
  complainOfFailure(message);
  return ExitCode::Failure;
}

ExitCode runGuarded(const Command& command, const Invocation& invocation) {
  try {
    return command.run(invocation);
  } catch (const Failure& failure) {
    complainOfFailure(failure.what());
  } catch (const StatusError& error) {
    complainOfFailure("The module refused: " + describe(error.status()) + ".");
  } catch (const std::exception& error) {
    complainOfFailure(error.what());
  }
  return ExitCode::Failure;
}

}  // namespace

namespace {

// Also where the line as a whole can't be parsed.
bool asksForJson(const std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  return std::find(arguments.begin(), end, "--json") != end;
}

ExitCode run(const std::vector<std::string>& typed, std::vector<std::string> rest) {
  const std::vector<std::string> arguments = guardedArguments(typed);
  Options options;
  CommandLine line(options);
  line.setRest(std::move(rest));
  try {
    line.parse(arguments);
  } catch (const CLI::Success& wish) {
    return show(line.text(wish));
  } catch (const CLI::ParseError& error) {
    return usageError(arguments, error);
  }
  options.project = unguarded(options.project);
  options.workspace = unguarded(options.workspace);
  options.configuration = unguarded(options.configuration);
  return runGuarded(line.command(), line.invocation(options));
}

// The last line of --json.
ExitCode tellResult(ExitCode code, std::chrono::milliseconds elapsed) {
  LineWriter& out = standardOutput();
  if (out.state() != LineWriter::State::Open) return code;
  writeObject(out, "result", {{"exit_code", static_cast<int>(code)}, {"elapsed_ms", elapsed.count()}});
  return finishOutput(out, code);
}

}  // namespace

int runCommandLine(int argc, char** argv) {
  const auto begin = std::chrono::steady_clock::now();
  std::vector<std::string> typed(argv + 1, argv + argc);
  std::vector<std::string> rest = cutRest(typed);
  const bool json = asksForJson(typed);
  speakIn(json ? Speech::Json : Speech::Text);
  ExitCode code = run(typed, std::move(rest));
  if (json) {
    const auto elapsed = std::chrono::steady_clock::now() - begin;
    code = tellResult(code, std::chrono::duration_cast<std::chrono::milliseconds>(elapsed));
  }
  return static_cast<int>(code);
}

}  // namespace forgeyard::console
