#include "workbench/session/first_start.h"

#include <unistd.h>

#include <array>
#include <filesystem>

#include "platform/registry/registry_paths.h"
#include "workbench/base/failure.h"
#include "workbench/base/program_paths.h"
#include "workbench/session/targets.h"

namespace forgeyard::workbench {

namespace {

using namespace registry_keys;

constexpr const char* kSpawner = "/TideSpawn.exe";

// The directory of the installation that this program belongs to: the one whose "bin" has the spawner.
std::string installation() {
  std::string above = std::filesystem::path(programDirectory()).parent_path().string();
  for (const std::string& home : std::array{above, above + "/lib/forgeyard"}) {
    if (isExecutable(home + "/bin" + kSpawner)) return home;
  }
  return above;
}

std::string modelSpelling(const std::string& hostPath) {
  std::string error;
  const auto path = HostPaths().toModel(hostPath, &error);
  if (!path) throw Failure("This installation can't be used where it stands: " + error + ".");
  return *path;
}

bool classesAreServed(const Registry& registry) {
  const std::string module = registeredModule(registry);
  return !module.empty() && ::access(module.c_str(), F_OK) == 0;
}

bool hasHome(const Registry& registry) {
  return isExecutable(adapterDirectory(registry) + kSpawner);
}

}  // namespace

void enterMissing(Registry& registry) {
  if (!hasHome(registry)) registry.setValue(kKorvel, kHome, modelSpelling(installation()));
  if (registry.open(kTargets)) return;
  registry.createKey(kTargets);
  for (const Target& target : detectTargets()) enterTarget(registry, target);
  if (const std::string linker = detectLinker(); !linker.empty() && registeredLinker(registry).empty())
    registry.setValue(kBuildTool, kLinker, linker);
}

std::string adapterDirectory(const Registry& registry) {
  const auto home = registry.value(kKorvel, kHome);
  if (!home || home->empty()) return "";
  const auto directory = hostPathsFrom(registry).toHost(*home);
  return directory ? *directory + "/bin" : "";
}

void prepareRegistry(Registry& registry, const Module& module) {
  const bool classes = classesAreServed(registry);
  const bool home = hasHome(registry);
  const bool targets = registry.open(kTargets).has_value();
  if (classes && home && targets) return;
  const std::string file = Registry::defaultFile();
  if (file.empty())
    throw Failure("There is no place for the registry: set HOME, XDG_CONFIG_HOME or FORGEYARD_REGISTRY.");
  if (!home || !targets) {
    const auto error = Registry::update(file, enterMissing);
    if (error) throw Failure(error->message);
  }
  if (!classes) require(module.registerServer(), "The classes can't be entered into the registry " + file);
  registry = Registry::load(file);
}

}  // namespace forgeyard::workbench
