// target list, add, remove and detect: the tool chains of the registry.

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/console/base/report.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/base/program_paths.h"
#include "workbench/session/first_start.h"
#include "workbench/session/targets.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

// The registry as every command finds it: with what the first start enters.
Registry preparedRegistry() {
  Registry registry = openRegistry();
  const Module module(registry);
  prepareRegistry(registry, module);
  return registry;
}

void change(const std::function<void(Registry&)>& work) {
  const auto error = Registry::update(Registry::defaultFile(), work);
  if (error) throw Failure(error->message);
}

std::string described(const std::string& commandLine, const std::string& adapters) {
  if (commandLine.empty()) return "(none)";
  const std::vector<std::string> missing = missingPrograms(commandLine, adapters);
  return commandLine + (missing.empty() ? "" : "  [not found: " + enumeration(missing) + "]");
}

std::vector<std::string> namesOf(const std::vector<Target>& targets) {
  std::vector<std::string> names;
  names.reserve(targets.size());
  for (const Target& target : targets) names.push_back(target.name);
  return names;
}

void tell(const Registry& registry, const std::vector<Target>& targets) {
  LineWriter& out = standardOutput();
  for (const Target& target : targets)
    writeObject(out, "target",
                {{"target", target.name}, {"compiler", target.compiler}, {"assembler", target.assembler}});
  if (const std::string linker = registeredLinker(registry); !linker.empty())
    writeObject(out, "linker",
                {{"linker", linker}, {"found", findProgram(linkerProgram(linker)).has_value()}});
}

ExitCode listTargets(const Invocation& invocation) {
  const Registry registry = preparedRegistry();
  const std::string adapters = adapterDirectory(registry);
  const std::vector<Target> targets = registeredTargets(registry);
  if (targets.empty()) {
    complain(
        "There are no targets. forgeyard target detect looks for compilers along PATH, target add enters "
        "one.");
  }
  LineWriter& out = standardOutput();
  if (invocation.options().json) {
    tell(registry, targets);
    return finishOutput(out, ExitCode::Success);
  }
  for (const Target& target : targets) {
    out.line(target.name);
    out.line("  compiler:  " + described(target.compiler, adapters));
    out.line("  assembler: " + described(target.assembler, adapters));
  }
  if (const std::string linker = registeredLinker(registry); !linker.empty()) {
    const bool found = findProgram(linkerProgram(linker)).has_value();
    out.line("linker of all targets: " + linker +
             (found ? "" : "  [not found: " + linkerProgram(linker) + "]"));
  }
  return finishOutput(out, ExitCode::Success);
}

void requireUsable(const std::string& tool, const std::string& commandLine) {
  if (!isTooLongForATool(commandLine)) return;
  throw Failure("The text of the " + tool + " has " + std::to_string(commandLine.size()) +
                " bytes; the longest that builds can use has " +
                std::to_string(registry_keys::kLongestToolText) +
                ". Put the options into the component's settings, or into a script that runs the tool.");
}

ExitCode addTarget(const Invocation& invocation) {
  const Target target{invocation.text("NAME"), invocation.text("--compiler"), invocation.text("--assembler")};
  const std::string& linker = invocation.text("--linker");
  if (target.name.empty()) throw Failure("A target needs a name.");
  requireUsable("compiler", target.compiler);
  requireUsable("assembler", target.assembler);
  const std::vector<std::string> names = namesOf(registeredTargets(preparedRegistry()));
  const bool known = std::find(names.begin(), names.end(), target.name) != names.end();
  if (known && target.compiler.empty() && target.assembler.empty() && linker.empty()) {
    throw Failure("There is a target " + target.name +
                  " already. Give --compiler, --assembler or --linker to change what it runs.");
  }
  change([&](Registry& registry) {
    enterTarget(registry, target);
    if (!linker.empty()) registry.setValue(registry_keys::kBuildTool, registry_keys::kLinker, linker);
  });
  return ExitCode::Success;
}

ExitCode removeOne(const Invocation& invocation) {
  const std::string& name = invocation.text("NAME");
  const std::vector<std::string> names = namesOf(registeredTargets(preparedRegistry()));
  if (std::find(names.begin(), names.end(), name) == names.end())
    throw Failure("There is no target " + name + "." + suggestion(name, names, "targets"));
  change([&](Registry& registry) { removeTarget(registry, name); });
  return ExitCode::Success;
}

// "added" with the text, or that there is one.
std::string told(const std::string& name, bool known, const std::string& text) {
  return name + (known ? ": known already" : ": added, " + text);
}

ExitCode detect(const Invocation&) {
  const std::vector<std::string> before = namesOf(registeredTargets(preparedRegistry()));
  const std::vector<Target> found = detectTargets();
  const std::string linker = detectLinker();
  LineWriter& out = standardOutput();
  change([&](Registry& registry) {
    for (const Target& target : found) {
      const bool known = std::find(before.begin(), before.end(), target.name) != before.end();
      // What the user has entered by hand stays.
      if (!known) enterTarget(registry, target);
      out.line(told(target.name, known, target.compiler));
    }
    if (linker.empty()) return;
    const bool known = !registeredLinker(registry).empty();
    if (!known) registry.setValue(registry_keys::kBuildTool, registry_keys::kLinker, linker);
    out.line(told("linker of all targets", known, linker));
  });
  if (found.empty())
    out.line(std::string_view("There is no compiler (gcc, or a cross compiler) along PATH."));
  return finishOutput(out, ExitCode::Success);
}

constexpr std::array kCommands{
    Command{
        "target list", "Show the targets, what they run, and what of it is missing here", {}, listTargets},
    Command{"target add",
            "Enter a target into the user's registry, or change what it runs",
            {{{Kind::Text, "NAME", "", "its name, as configurations have it", Completes::Target},
              {Kind::Option, "--compiler", "TEXT", "how its compiler's command line begins: \"gnu-cc gcc\""},
              {Kind::Option, "--assembler", "TEXT", "how its assembler's command line begins: \"gnu-as as\""},
              {Kind::Option, "--linker", "TEXT",
               "what linker components run, whatever the target: a GNU tool chain's prefix, "
               "\"mipsel-linux-gnu-\", or its linker's path"}}},
            addTarget},
    Command{"target remove",
            "Take a target out of the user's registry",
            {{{Kind::Text, "NAME", "", "its name", Completes::Target}}},
            removeOne},
    Command{"target detect",
            "Enter a target for every compiler along PATH that has none yet, and a MIPS linker if none is "
            "entered",
            {},
            detect},
};

}  // namespace

std::span<const Command> targetCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
