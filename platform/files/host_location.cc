#include "platform/files/host_location.h"

#include <sys/stat.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <mutex>

#include "platform/paths/host_lookup.h"
#include "platform/paths/host_path.h"
#include "platform/registry/registry.h"
#include "platform/registry/registry_keys.h"

namespace forgeyard {
namespace {

HostPaths pathsOfRegistry() {
  HostPaths paths;
  const Registry registry = Registry::load(Registry::defaultFile());
  const std::optional<RegistryKey> drives = registry.open(registry_keys::kDrives);
  if (!drives) return paths;
  for (const std::string& drive : drives->valueNames()) {
    // A value that names no drive or no absolute directory maps nothing.
    if (const auto directory = drives->value(drive)) paths.mapDrive(drive, *directory);
  }
  return paths;
}

struct Locations {
  std::mutex mutex;
  HostLookup lookup{pathsOfRegistry()};
  std::atomic<std::size_t> version{0};
};

// Never destroyed: detached threads may ask while the program ends.
Locations& locations() {
  static Locations& instance = *new Locations;
  return instance;
}

bool sameFile(const char* a, const char* b) {
  struct stat first {};
  struct stat second {};
  return ::stat(a, &first) == 0 && ::stat(b, &second) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino;
}

// As the user's shell spells it, with the links that led there; else as the system does.
std::filesystem::path workingDirectory(std::error_code& error) {
  const char* spelled = std::getenv("PWD");
  if (spelled && *spelled == '/' && sameFile(spelled, ".")) return spelled;
  return std::filesystem::current_path(error);
}

}  // namespace

std::optional<std::string> toHost(const BString& path) {
  const std::string narrow = path.narrow();
  Locations& here = locations();
  const std::lock_guard<std::mutex> lock(here.mutex);
  return here.lookup.resolve(narrow);
}

std::optional<std::string> existingHost(const BString& path) {
  const std::string narrow = path.narrow();
  Locations& here = locations();
  const std::lock_guard<std::mutex> lock(here.mutex);
  return here.lookup.existing(narrow);
}

std::optional<std::string> spelledHost(const BString& path) {
  const std::string narrow = path.narrow();
  Locations& here = locations();
  const std::lock_guard<std::mutex> lock(here.mutex);
  return here.lookup.paths().toHost(narrow);
}

ModelPath toModel(std::string_view hostPath) {
  if (hostPath.empty()) return {{}, "An empty text is no path."};
  std::filesystem::path path(hostPath);
  if (path.is_relative()) {
    std::error_code error;
    path = workingDirectory(error) / path;
    if (error) {
      return {{},
              "The working directory, from which " + std::string(hostPath) +
                  " counts, cannot be told: " + error.message() + "."};
    }
  }
  std::string absolute = path.lexically_normal().string();
  if (absolute.size() > 1 && absolute.back() == '/') absolute.pop_back();
  std::string error;
  const std::optional<std::string> model = HostPaths().toModel(absolute, &error);
  if (model) return {BString::fromNarrow(*model), {}};
  return {{}, error.empty() ? absolute + " has no spelling as a path of a project." : error};
}

void reloadDrives() {
  HostPaths paths = pathsOfRegistry();
  Locations& here = locations();
  const std::lock_guard<std::mutex> lock(here.mutex);
  here.lookup.setPaths(std::move(paths));
  ++here.version;
}

std::size_t drivesVersion() noexcept {
  return locations().version;
}

}  // namespace forgeyard
