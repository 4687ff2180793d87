#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/console/base/exit_code.h"
#include "hosts/console/base/options.h"

namespace forgeyard::console {

// What an argument names, for the shells to complete it. An argument with a few fixed words lists them as its
// value, "text|dot|svg".
enum class Completes : std::uint8_t {
  Nothing,  // or the words of its value
  File,
  Directory,
  ProjectFile,
  Component,
  Folder,
  ComponentKind,
  Configuration,
  SourceFile,  // a file of the project
  ComponentOrSourceFile,
  Property,                 // of the component that the argument COMPONENT names
  Assignment,               // one of those, "=" and a value
  ConfigurationAssignment,  // the same with those of a configuration
  Target,
  Project,  // of the workspace
  Interface,
  Class,
  Command,  // of this program
};

// What a command takes behind its name. Help, manual, completion, usage errors and the parser all come from
// these rows.
struct Parameter {
  enum class Kind : std::uint8_t {
    None,
    Text,           // one argument
    OptionalText,   // one or none
    Texts,          // one or more
    OptionalTexts,  // any number
    Option,         // "--name VALUE"
    Flag,           // "--name"
    Rest,           // all that stands behind the arguments before it, options too
  };

  Kind kind = Kind::None;
  const char* name = "";   // "FILE", or "--folder"
  const char* value = "";  // of an option: "NAME"; also of an argument with fixed words: "text|dot|svg"
  const char* help = "";
  Completes completes = Completes::Nothing;
};

// What the user gave a command, by the names of its parameters.
class Invocation {
 public:
  explicit Invocation(const Options& options) : options_(&options) {}

  const Options& options() const { return *options_; }
  bool has(std::string_view parameter) const { return values_.contains(parameter); }
  // Empty when it was not given.
  const std::string& text(std::string_view parameter) const;
  const std::vector<std::string>& texts(std::string_view parameter) const;

  void add(std::string_view parameter, std::string value) {
    values_[std::string(parameter)].push_back(std::move(value));
  }

 private:
  const Options* options_;
  std::map<std::string, std::vector<std::string>, std::less<>> values_;
};

struct Command {
  const char* name;  // one or two words: "build", "folder add"
  const char* help;
  std::array<Parameter, 8> parameters;
  // Throws a Failure.
  ExitCode (*run)(const Invocation&);
  bool hidden = false;  // for programs: no help names it
};

// The first words of commands with two, with what they are about.
struct CommandGroup {
  const char* name;
  const char* help;
};

// The commands of one file, below a heading that neighbours may share.
struct CommandFamily {
  const char* heading;
  std::span<const Command> (*commands)();
};

// Each family of commands is one file in this directory.
std::span<const Command> projectCommands();
std::span<const Command> componentCommands();
std::span<const Command> connectionCommands();
std::span<const Command> fileCommands();
std::span<const Command> configurationCommands();
std::span<const Command> propertyCommands();
std::span<const Command> workspaceCommands();
std::span<const Command> targetCommands();
std::span<const Command> buildCommands();
std::span<const Command> planCommands();
std::span<const Command> watchCommands();
std::span<const Command> graphCommands();
std::span<const Command> dumpCommands();
std::span<const Command> restoreCommands();
std::span<const Command> mergeCommands();
std::span<const Command> automationCommands();
std::span<const Command> moduleCommands();
std::span<const Command> doctorCommands();
std::span<const Command> usageCommands();
std::span<const Command> importCommands();
std::span<const Command> exportCommands();

}  // namespace forgeyard::console
