#pragma once

#include <span>
#include <string>
#include <string_view>

#include "hosts/console/base/options.h"
#include "hosts/console/commands/command.h"

namespace forgeyard::console {

// An option that may stand on every command line. Its row's name is "-p,--project", or the long form alone.
struct GlobalOption {
  Parameter row;
  std::string Options::*text = nullptr;  // where its value goes
  bool Options::*flag = nullptr;         // or that it was given
};

std::span<const GlobalOption> globalOptions();

// The one that has this form; null for none.
const GlobalOption* globalOption(std::string_view form);

// A row of what the whole program has in common: an exit code, a variable of the environment, a file.
struct UsageNote {
  const char* name;
  const char* help;
};

std::span<const UsageNote> exitCodes();
std::span<const UsageNote> environmentVariables();
std::span<const UsageNote> usedFiles();

// The forms of an option's name: "-p" and "--project" of "-p,--project"; the short one may be empty.
std::string_view shortForm(std::string_view name);
std::string_view longForm(std::string_view name);
bool isFormOf(std::string_view form, const Parameter& option);

}  // namespace forgeyard::console
