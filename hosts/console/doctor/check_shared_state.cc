#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "hosts/console/doctor/checks.h"
#include "platform/threads/runtime_directory.h"
#include "workbench/base/failure.h"
#include "workbench/base/lock_holder.h"
#include "workbench/project/project_file.h"
#include "workbench/project/workspace_file.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

// The file behind the mutex that a build holds while a tool runs.
constexpr const char* kBuildMutex = "/ExcludeMultiBuild.mutex";

std::string modeOf(const std::string& path) {
  struct stat status {};
  std::array<char, 16> text{};
  if (::stat(path.c_str(), &status) == 0)
    std::snprintf(text.data(), text.size(), "%04o", static_cast<unsigned>(status.st_mode & 07777));
  return text.data();
}

void checkBuilds(const std::string& directory, CheckResults& results) {
  const auto holder = findLockHolder(directory + kBuildMutex);
  if (!holder) return results.ok("builds", "none is running");
  if (holder->stopped) {
    return results.warning(
        "builds", toText(*holder) + " is stopped in the midst of one; all others wait for it",
        "Let it go on (fg), or end it: kill -CONT, or kill -KILL, " + std::to_string(holder->process));
  }
  results.ok("builds", toText(*holder) + " is running a tool; others take turns with it");
}

// Who has a file open that only one host can have.
void checkHolder(const std::string& subject, const std::string& file, CheckResults& results) {
  const auto holder = findLockHolder(file);
  if (!holder) return;
  results.warning(subject, inUse(file),
                  holder->stopped ? "That process is stopped: let it go on (fg), or end it."
                                  : "Wait for it, or stop its build: forgeyard stop");
}

// A file that commands read and write.
void checkFile(const std::string& subject, const std::string& file, CheckResults& results) {
  struct stat status {};
  ::stat(file.c_str(), &status);
  // Such a file counts as read-only for a superuser too.
  const bool marked = (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
  if (!S_ISREG(status.st_mode)) {
    results.warning(subject, file + " is no regular file", "Name another one.");
  } else if (::access(file.c_str(), R_OK) != 0) {
    results.warning(subject, file + " can't be read", "chmod u+rw it.");
  } else if (marked || ::access(file.c_str(), W_OK) != 0) {
    results.warning(subject, file + " is read-only", "chmod u+w it, or check it out for writing.");
  } else {
    results.ok(subject, file);
  }
  checkHolder(subject, file, results);
}

void checkWorkspace(const Options& options, CheckResults& results) {
  const std::string file = WorkspaceFile::fileFor(options.workspace);
  if (file.empty()) {
    results.warning("workspace", "There is no place for it",
                    "Set HOME, XDG_DATA_HOME or FORGEYARD_WORKSPACE.");
  } else if (::access(file.c_str(), F_OK) == 0) {
    checkFile("workspace", file, results);
  } else if (canBeMade(file)) {
    results.ok("workspace", file + ": not there yet; \"workspace add\" makes it");
  } else {
    results.warning("workspace", file + " is not there and can't be made",
                    "Make its directory writable, or name another file with -w or FORGEYARD_WORKSPACE.");
  }
}

void checkProject(const Options& options, CheckResults& results) {
  if (options.project.empty() && !isProjectFileHere()) return;
  try {
    checkFile("project", existingProjectFile(options.project).host, results);
  } catch (const Failure& failure) {
    results.warning("project", failure.what(), "");
  }
}

}  // namespace

void checkRuntimeDirectory(CheckResults& results) {
  constexpr const char* kSubject = "runtime";
  const std::string directory = runtimeDirectoryName();
  checkAbsolute(kSubject, directory, "FORGEYARD_RUNTIME_DIR or XDG_RUNTIME_DIR", results);
  if (::access(directory.c_str(), F_OK) != 0 && errno == ENOENT) {
    // Only its last part is made by itself.
    const std::string parent = std::filesystem::absolute(directory).parent_path().string();
    if (::access(parent.c_str(), W_OK | X_OK) == 0)
      return results.ok(kSubject, directory + ": not there yet; the next build makes it");
    return results.problem(kSubject, directory + " is not there and can't be made",
                           "Make " + parent + " writable, or name another with FORGEYARD_RUNTIME_DIR.");
  }
  try {
    requireOwnRuntimeDirectory(directory);
  } catch (const std::system_error& error) {
    return results.problem(kSubject, error.what(),
                           "It has to be a directory of your own that nobody else can write: chmod 700, or "
                           "name another one with FORGEYARD_RUNTIME_DIR.");
  }
  if (::access(directory.c_str(), R_OK | W_OK | X_OK) != 0)
    return results.problem(kSubject, directory + " can't be written", "chmod 700 it.");
  results.ok(kSubject, directory + ", yours, mode " + modeOf(directory));
  checkBuilds(directory, results);
}

void checkFiles(const Options& options, CheckResults& results) {
  checkWorkspace(options, results);
  checkProject(options, results);
}

}  // namespace forgeyard::console
