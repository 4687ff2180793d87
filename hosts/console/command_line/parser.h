#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

#include "hosts/console/commands/command.h"

namespace forgeyard::console {

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
  void addCommand(const Command& command, const char* heading);
  CLI::App& parentFor(const Command& command, const char* heading);
  static CLI::Option* addParameter(CLI::App& app, const Parameter& parameter);

  CLI::App app_{"Builds projects of source files, tools and what joins them.", "forgeyard"};
  std::map<std::string, CLI::App*, std::less<>> groups_;
  std::vector<Leaf> leaves_;
  const Leaf* chosen_ = nullptr;
  std::vector<std::string> rest_;  // of a command that takes it
};

}  // namespace forgeyard::console
