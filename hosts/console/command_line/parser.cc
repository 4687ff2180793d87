#include "hosts/console/command_line/parser.h"

#include <algorithm>
#include <sstream>

#include "hosts/console/command_line/arguments.h"
#include "hosts/console/commands/all_commands.h"
#include "hosts/console/commands/common_usage.h"
#include "hosts/console/usage/examples.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

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
  return "Every option above may stand before or behind the command.\n" + wrapped(codes + ".");
}

// Behind the help of a command, or of the first word of several: examples, and what every command takes.
std::string commandFooter(std::string_view name) {
  std::string text;
  for (const Example& example : examples()) {
    if (!shows(example, name)) continue;
    text += text.empty() ? "Examples:\n" : "";
    text.append("  ").append(example.line).append("\n      ").append(example.help).append("\n");
  }
  text += text.empty() ? "Also" : "\nAlso";
  const char* between = ": ";
  for (const GlobalOption& option : globalOptions()) {
    const std::string_view brief = shortForm(option.row.name);
    text += std::exchange(between, ", ");
    text += brief.empty() ? longForm(option.row.name) : brief;
    if (option.text) text.append(" ").append(option.row.value);
  }
  return text + "; see forgeyard --help.";
}

}  // namespace

CommandLine::CommandLine(Options& options) {
  app_.set_version_flag("--version", std::string("forgeyard ") + FORGEYARD_VERSION, "Show the version");
  app_.set_help_flag("-h,--help", "Show what there is; also behind a command");
  app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app_.get_formatter()->label("Positionals", "Arguments");
  // The line of the usage tells that by its brackets.
  app_.get_formatter()->label("REQUIRED", "");
  app_.get_formatter()->column_width(28);
  app_.require_subcommand(1);
  app_.footer(footer());
  addGlobalOptions(options);
  for (const CommandFamily& family : commandFamilies()) {
    for (const Command& command : family.commands()) addCommand(command, family.heading);
  }
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

CLI::App& CommandLine::parentFor(const Command& command, const char* heading) {
  if (!hasGroup(command.name)) return app_;
  const std::string word = firstWord(command.name);
  if (const auto known = groups_.find(word); known != groups_.end()) return *known->second;
  const auto groups = commandGroups();
  const auto group =
      std::find_if(groups.begin(), groups.end(), [&](const auto& row) { return row.name == word; });
  CLI::App* made = app_.add_subcommand(word, group == groups.end() ? "" : group->help);
  made->require_subcommand(1)->fallthrough()->group(heading)->footer(commandFooter(word));
  groups_.emplace(word, made);
  return *made;
}

CLI::Option* CommandLine::addParameter(CLI::App& app, const Parameter& parameter) {
  const CLI::callback_t keep = [](const CLI::results_t&) { return true; };
  if (parameter.kind == Kind::Flag) return app.add_flag(parameter.name, parameter.help);
  CLI::Option* option = app.add_option(parameter.name, keep, parameter.help);
  option->type_name(parameter.kind == Kind::Option ? parameter.value : "");
  if (parameter.kind == Kind::Texts || parameter.kind == Kind::OptionalTexts ||
      parameter.kind == Kind::Rest) {
    option->expected(1, CLI::detail::expected_max_vector_size)->allow_extra_args();
    option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)->option_text("...");
  }
  option->required(parameter.kind == Kind::Text || parameter.kind == Kind::Texts);
  return option;
}

void CommandLine::addCommand(const Command& command, const char* heading) {
  CLI::App* app = parentFor(command, heading).add_subcommand(lastWord(command.name), command.help);
  app->fallthrough()->footer(commandFooter(command.name));
  if (command.hidden) {
    app->group("");
  } else {
    app->group(hasGroup(command.name) ? "Commands" : heading);
  }
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

}  // namespace forgeyard::console
