#include "hosts/console/commands/common_usage.h"

#include <algorithm>

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

constexpr std::array kOptions{
    GlobalOption{
        {Kind::Option, "-p,--project", "FILE",
         "The project file; left out: the one of the current directory, or if there is none the active\n"
         "project of the workspace",
         Completes::ProjectFile},
        &Options::project,
        nullptr},
    GlobalOption{
        {Kind::Option, "-w,--workspace", "FILE",
         "The workspace; left out: your own. Without -p, work on its active project", Completes::File},
        &Options::workspace,
        nullptr},
    GlobalOption{{Kind::Option, "-c,--config", "NAME",
                  "The configuration to work on, for this call only; left out: the active one",
                  Completes::Configuration},
                 &Options::configuration,
                 nullptr},
    GlobalOption{{Kind::Flag, "-y,--yes", "", "Answer questions with yes"}, nullptr, &Options::yes},
    GlobalOption{
        {Kind::Flag, "-q,--quiet", "", "Show only errors; of a build what the tools print and what fails"},
        nullptr,
        &Options::quiet},
    GlobalOption{
        {Kind::Flag, "-v,--verbose", "", "Say more about what is going on"}, nullptr, &Options::verbose},
    GlobalOption{{Kind::Flag, "--json", "",
                  "Write standard output as one JSON object a line, messages included: see docs/output.md"},
                 nullptr,
                 &Options::json},
};

constexpr std::array kExitCodes{
    UsageNote{"0", "success"},
    UsageNote{"1",
              "the build ended with errors, or would (--dry-run, status), dump found damage, doctor a "
              "problem, or merge a conflict"},
    UsageNote{"2", "wrong usage, or a file that can't be read or written"},
    UsageNote{"130", "stopped"},
    UsageNote{"141", "nobody reads standard output any more"},
};

constexpr std::array kVariables{
    UsageNote{"FORGEYARD_REGISTRY", "the registry's file, in place of the one in XDG_CONFIG_HOME or HOME"},
    UsageNote{"FORGEYARD_WORKSPACE",
              "the workspace where -w names none, in place of the one in XDG_DATA_HOME or HOME"},
    UsageNote{
        "FORGEYARD_RUNTIME_DIR",
        "the directory in which programs of one user meet, in place of forgeyard in XDG_RUNTIME_DIR; nobody "
        "else may write it"},
    UsageNote{"PATH", "where compilers, assemblers, linkers and other tools are looked for"},
};

constexpr std::array kFiles{
    UsageNote{"*.nqp", "project files, in any directory"},
    UsageNote{"~/.config/forgeyard/registry",
              "the registry, a text: targets, linker, drives, the installation. The first command makes it"},
    UsageNote{"~/.local/share/forgeyard/workspace", "the workspace: a list of projects, one of them active"},
    UsageNote{"/tmp/forgeyard-UID", "the runtime directory where XDG_RUNTIME_DIR names none"},
};

}  // namespace

std::span<const GlobalOption> globalOptions() {
  return kOptions;
}

const GlobalOption* globalOption(std::string_view form) {
  const auto found = std::find_if(kOptions.begin(), kOptions.end(),
                                  [&](const GlobalOption& option) { return isFormOf(form, option.row); });
  return found == kOptions.end() ? nullptr : &*found;
}

std::span<const UsageNote> exitCodes() {
  return kExitCodes;
}
std::span<const UsageNote> environmentVariables() {
  return kVariables;
}
std::span<const UsageNote> usedFiles() {
  return kFiles;
}

std::string_view shortForm(std::string_view name) {
  const std::size_t comma = name.find(',');
  return comma == name.npos ? std::string_view() : name.substr(0, comma);
}

std::string_view longForm(std::string_view name) {
  const std::size_t comma = name.find(',');
  return comma == name.npos ? name : name.substr(comma + 1);
}

bool isFormOf(std::string_view form, const Parameter& option) {
  return !form.empty() && (form == shortForm(option.name) || form == longForm(option.name));
}

}  // namespace forgeyard::console
