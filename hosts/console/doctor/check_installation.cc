#include <array>
#include <filesystem>

#include "hosts/console/doctor/checks.h"
#include "hosts/console/doctor/program_version.h"
#include "workbench/base/failure.h"
#include "workbench/base/program_paths.h"
#include "workbench/session/first_start.h"
#include "workbench/session/module.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

constexpr const char* kReinstall = "Install Forgeyard anew, or build it again; its programs belong together.";

void checkModule(const Registry& registry, CheckResults& results) {
  try {
    const Module module(registry);
    results.ok("module", std::filesystem::path(module.path()).lexically_normal().string());
  } catch (const Failure& failure) {
    results.problem("module", failure.what(), kReinstall);
  }
}

// One of the programs that lie in one directory with the spawner. They tell their version as this one does.
void checkPart(const std::string& subject, const std::string& path, CheckResults& results) {
  std::error_code error;
  if (!std::filesystem::exists(path, error))
    return results.problem(subject, path + " is not there", kReinstall);
  if (!isExecutable(path)) return results.problem(subject, path + " is not executable", "chmod +x it.");
  const std::string version = programVersion(path);
  if (version.empty()) return results.problem(subject, path + " doesn't run", kReinstall);
  const std::string expected = std::filesystem::path(path).filename().string() + " " + FORGEYARD_VERSION;
  if (version == expected) return results.ok(subject, path);
  results.warning(subject, path + " is of another version: " + version, kReinstall);
}

}  // namespace

void checkInstallation(const Registry& registry, CheckResults& results) {
  results.ok("program", programDirectory() + "/forgeyard " FORGEYARD_VERSION);
  checkModule(registry, results);
  const std::string directory = adapterDirectory(registry);
  if (directory.empty())
    return results.problem("home", "The registry's Home can't be found on this system",
                           "Take the line Home=... out of the registry; the next command enters it anew.");
  results.ok("home", std::filesystem::path(directory).parent_path().string());
  checkPart("spawner", directory + "/TideSpawn.exe", results);
  for (const char* adapter : {"gnu-cc", "gnu-as", "TRAMLINK"})
    checkPart("adapter", directory + "/" + adapter, results);
}

}  // namespace forgeyard::console
