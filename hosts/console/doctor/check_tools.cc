#include <set>

#include "hosts/console/doctor/checks.h"
#include "hosts/console/doctor/debian_packages.h"
#include "hosts/console/doctor/program_version.h"
#include "platform/registry/registry_keys.h"
#include "workbench/base/nearest.h"
#include "workbench/base/program_paths.h"
#include "workbench/session/first_start.h"
#include "workbench/session/targets.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

std::string installAdvice(const std::vector<std::string>& missing, const std::string& otherwise) {
  std::set<std::string> packages;
  for (const std::string& program : missing) {
    const std::string package = debianPackageOf(program);
    if (package.empty()) return "Install " + enumeration(missing) + ", or " + otherwise;
    packages.insert(package);
  }
  std::string advice = "apt install";
  for (const std::string& package : packages) advice += " " + package;
  return advice + "; or " + otherwise;
}

// One tool of a target. Whether it can be started.
class ToolCheck {
 public:
  ToolCheck(std::string adapters, CheckResults& results)
      : adapters_(std::move(adapters)), findings_(results) {}

  bool check(const Target& target, const std::string& tool, const std::string& commandLine) {
    const std::string enterAnother =
        "enter another with: forgeyard target add " + quoted(target.name) + " --" + tool;
    if (isTooLongForATool(commandLine)) {
      findings_.warning("target",
                        target.name + ", " + tool + ": its text has " + std::to_string(commandLine.size()) +
                            " bytes; the longest that builds can use has " +
                            std::to_string(registry_keys::kLongestToolText),
                        enterAnother);
      return false;
    }
    const std::vector<ToolProgram> programs = programsOf(commandLine, adapters_);
    std::vector<std::string> missing;
    for (const ToolProgram& program : programs) {
      // The checks of the installation tell of those.
      if (!program.path && !program.adapter) missing.push_back(program.name);
    }
    const std::string what = target.name + ", " + tool + ": " + commandLine;
    if (!missing.empty()) {
      findings_.warning("target", what + ": " + enumeration(missing) + " is not found on PATH",
                        installAdvice(missing, enterAnother));
      return false;
    }
    if (programs.empty()) return false;
    findings_.ok("target", what + described(programs));
    return true;
  }

 private:
  static std::string quoted(const std::string& name) {
    return name.find(' ') == name.npos ? name : "\"" + name + "\"";
  }

  // Only tools behind an adapter are known to answer when they are asked for their version.
  static std::string described(const std::vector<ToolProgram>& programs) {
    const ToolProgram& last = programs.back();
    if (!last.path || last.adapter) return "";
    const std::string version = programs.size() > 1 ? programVersion(*last.path) : "";
    return "  [" + *last.path + (version.empty() ? "" : ", " + version) + "]";
  }

  std::string adapters_;
  CheckResults& findings_;
};

void checkLinker(const Registry& registry, CheckResults& results) {
  const std::string linker = registeredLinker(registry);
  if (linker.empty())
    return results.ok("linker", "none is entered; projects without a linker component need none");
  const std::string program = linkerProgram(linker);
  if (const auto path = findProgram(program)) {
    const std::string version = programVersion(*path);
    return results.ok("linker", linker + "  [" + *path + (version.empty() ? "" : ", " + version) + "]");
  }
  results.warning("linker", linker + ": " + program + " is not found: linker components can't run",
                  installAdvice({program}, "enter another with: forgeyard target add NAME --linker TEXT"));
}

}  // namespace

void checkTools(const Registry& registry, CheckResults& results) {
  ToolCheck tools(adapterDirectory(registry), results);
  const std::vector<Target> targets = registeredTargets(registry);
  bool anyCompiler = false;
  for (const Target& target : targets) {
    if (target.compiler.empty() && target.assembler.empty()) {
      results.warning("target", target.name + " has neither compiler nor assembler",
                      "forgeyard target add " + target.name + " --compiler \"gnu-cc gcc\"");
    }
    if (!target.compiler.empty()) anyCompiler |= tools.check(target, "compiler", target.compiler);
    if (!target.assembler.empty()) tools.check(target, "assembler", target.assembler);
  }
  if (targets.empty()) {
    results.problem(
        "target", "There are no targets",
        "apt install gcc, then: forgeyard target detect; or enter one with: forgeyard target add");
  } else if (!anyCompiler) {
    results.problem("target", "No target has a compiler that can be started", "See the lines above.");
  }
  checkLinker(registry, results);
}

}  // namespace forgeyard::console
