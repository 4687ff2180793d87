#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "hosts/console/doctor/checks.h"
#include "platform/registry/registry_line.h"
#include "platform/registry/registry_paths.h"
#include "workbench/base/failure.h"
#include "workbench/base/lock_holder.h"
#include "workbench/session/first_start.h"
#include "workbench/session/module.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

namespace fs = std::filesystem;
using namespace registry_keys;

constexpr const char* kSubject = "registry";
constexpr std::size_t kMostLines = 5;
constexpr std::size_t kMostBytes = 60;  // of one of them

bool isBlankOrComment(std::string_view line) {
  const std::size_t start = line.find_first_not_of(" \t\r\n");
  return start == line.npos || line[start] == ';' || line.substr(start).starts_with("\xEF\xBB\xBF");
}

bool isUnderstood(std::string_view raw) {
  const RegistryLine line = readRegistryLine(raw);
  if (line.kind == RegistryLine::Kind::Section) return !line.name.empty();
  return line.kind == RegistryLine::Kind::Value || isBlankOrComment(raw);
}

// The lines of the file that a reader passes over.
void checkLines(const std::string& file, const std::string& text, CheckResults& results) {
  std::size_t number = 0;
  std::size_t told = 0;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
    const std::string_view raw = rest.substr(0, end);
    rest.remove_prefix(end);
    ++number;
    if (isUnderstood(raw) || ++told > kMostLines) continue;
    std::string what = file + ":" + std::to_string(number) + ": \"";
    const std::string_view line = raw.substr(0, raw.find_last_not_of("\r\n") + 1);
    what.append(line.substr(0, kMostBytes)).append(line.size() > kMostBytes ? "..." : "");
    what += "\" is not understood";
    results.warning(kSubject, what, "Write [KEY], NAME=TEXT or ; COMMENT, or take the line out.");
  }
  if (told > kMostLines)
    results.warning(kSubject, std::to_string(told - kMostLines) + " more such lines", "See above.");
}

bool canBeReplaced(const std::string& file) {
  std::error_code error;
  const std::string real = fs::canonical(file, error).string();
  return ::access(file.c_str(), W_OK) == 0 && ::access(fs::path(real).parent_path().c_str(), W_OK) == 0;
}

void complete(Registry& registry) {
  try {
    enterMissing(registry);
  } catch (const Failure&) {
    // The check of the home says so.
  }
}

// Whether no command has to write before it can work.
bool isComplete(const Registry& registry) {
  Registry completed = Registry::parse(registry.text());
  complete(completed);
  return completed.text() == registry.text() && ::access(registeredModule(registry).c_str(), F_OK) == 0;
}

void checkPresent(const std::string& file, const Registry& registry, CheckResults& results) {
  const bool whole = isComplete(registry);
  if (canBeReplaced(file)) {
    results.ok(kSubject, file + (whole ? "" : "; the next command enters what is missing in it"));
  } else if (whole) {
    results.warning(kSubject, file + " can't be written: targets can't be changed",
                    "Make the file and its directory writable: chmod u+w");
  } else {
    results.problem(kSubject, file + " lacks entries and can't be written",
                    "Make the file and its directory writable: chmod u+w");
  }
  checkLines(file, registry.text(), results);
}

void checkMissing(const std::string& file, CheckResults& results) {
  if (canBeMade(file)) return results.ok(kSubject, file + ": not there yet; the next command makes it");
  results.problem(kSubject, file + " is not there and can't be made",
                  "Make its directory writable, or name another file with FORGEYARD_REGISTRY.");
}

void checkUnreadable(const RegistryError& error, CheckResults& results) {
  const bool denied = error.code == EACCES || error.code == EPERM;
  results.problem(kSubject, error.message,
                  denied ? "Make it readable: chmod u+rw"
                         : "Move it away; the next command makes a new one. \"forgeyard target add\" enters "
                           "targets again.");
}

void checkDrives(const Registry& registry, CheckResults& results) {
  const auto drives = registry.open(kDrives);
  if (!drives) return;
  for (const std::string& name : drives->valueNames()) {
    const std::string directory = drives->value(name).value_or("");
    if (directory.empty()) continue;
    const std::string what = std::string(name).append(" is ").append(directory);
    HostPaths table;
    std::error_code error;
    if (!table.mapDrive(std::string_view(name), directory)) {
      results.warning("drive", what + ", which maps nothing",
                      "Write a letter and an absolute directory: C:=/home/me/c");
    } else if (!fs::is_directory(directory, error)) {
      results.warning("drive", what + ", which is no directory", "Make the directory, or mend the registry.");
    } else {
      results.ok("drive", what);
    }
  }
}

}  // namespace

void checkAbsolute(const std::string& subject, const std::string& path, const std::string& variables,
                   CheckResults& results) {
  if (fs::path(path).is_absolute()) return;
  results.warning(subject, path + " is relative: it is another one in every directory",
                  "Set " + variables + " to an absolute path.");
}

bool canBeMade(const std::string& file) {
  std::error_code error;
  fs::path directory = fs::absolute(file, error).parent_path();
  while (!fs::exists(directory, error) && directory.has_relative_path()) directory = directory.parent_path();
  return fs::is_directory(directory, error) && ::access(directory.c_str(), W_OK | X_OK) == 0;
}

Registry checkRegistry(CheckResults& results) {
  const std::string file = Registry::defaultFile();
  std::optional<RegistryError> error;
  Registry registry;
  if (file.empty()) {
    results.problem(kSubject, "There is no place for it", "Set HOME, XDG_CONFIG_HOME or FORGEYARD_REGISTRY.");
  } else {
    checkAbsolute(kSubject, file, "HOME, XDG_CONFIG_HOME or FORGEYARD_REGISTRY", results);
    registry = Registry::load(file, &error);
    if (error) {
      checkUnreadable(*error, results);
    } else if (::access(file.c_str(), F_OK) != 0) {
      checkMissing(file, results);
    } else {
      checkPresent(file, registry, results);
    }
    if (const auto holder = findLockHolder(file + ".lock"))
      results.warning(kSubject, toText(*holder) + " is writing it; changes of it wait",
                      holder->stopped ? "That process is stopped: let it go on (fg), or end it." : "");
  }
  checkDrives(registry, results);
  complete(registry);
  return registry;
}

}  // namespace forgeyard::console
