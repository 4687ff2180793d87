#include "workbench/project/project_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "platform/paths/shell_path.h"
#include "workbench/base/failure.h"
#include "workbench/base/lock_holder.h"
#include "workbench/base/nearest.h"

namespace forgeyard::workbench {

namespace {

namespace fs = std::filesystem;

constexpr const char* kExtension = ".nqp";

std::vector<std::string> projectFilesIn(const fs::path& directory) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(directory, error)) {
    std::error_code ignored;
    if (entry.path().extension() == kExtension && entry.is_regular_file(ignored))
      names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string onlyFileHere() {
  const std::vector<std::string> names = projectFilesIn(".");
  if (names.size() == 1) return names.front();
  std::error_code error;
  const std::string here = fs::current_path(error).string();
  if (names.empty()) {
    throw Failure("There is no project file (*.nqp) in " + here +
                  ". Name one with -p FILE.nqp, or make one: forgeyard new NAME.nqp");
  }
  throw Failure("There are several project files in " + here + ": " + enumeration(names) +
                ". Name one with -p FILE.nqp.");
}

}  // namespace

BString ProjectFile::path() const {
  std::u16string whole(directory.view());
  PathAddBackslashA(whole);
  return BString::concat(whole, name);
}

ProjectFile projectFile(const std::string& path, FileNames names) {
  const ModelPath model = toModel(path);
  if (!model) throw Failure(model.error);
  ProjectFile file;
  file.host = spelledHost(model.path).value_or(path);
  if (names == FileNames::OfProjects && fs::path(file.host).extension() != kExtension) {
    throw Failure(file.host + ": the name of a project file ends in \"" + kExtension + "\".");
  }
  std::u16string directory(model.path.view());
  std::u16string name(directory);
  PathRemoveFileSpecA(directory);
  PathStripPathA(name);
  file.directory = directory;
  file.name = name;
  return file;
}

ProjectFile existingProjectFile(const std::string& path, FileNames names) {
  const std::string chosen = path.empty() ? onlyFileHere() : path;
  struct stat status {};
  if (::stat(chosen.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
    throw Failure(chosen + " is a directory. Name the project file in it.");
  ProjectFile file = projectFile(chosen, names);
  if (::stat(file.host.c_str(), &status) == 0) {
    if (!S_ISREG(status.st_mode)) throw Failure(file.host + " is no regular file.");
    return file;
  }
  if (errno != ENOENT) throw Failure(openFailure(file, STG_E_ACCESSDENIED));
  const fs::path host(file.host);
  throw Failure("There is no project file " + file.host + "." +
                suggestion(host.filename().string(), projectFilesIn(host.parent_path()),
                           "project files in that directory"));
}

bool isProjectFileHere() {
  return !projectFilesIn(".").empty();
}

std::string saveFailure(const ProjectFile& file, HRESULT status) {
  return file.host + " can't be written: " + describe(status) + ". The file stands as it was.";
}

std::string creationFailure(const ProjectFile& file) {
  if (findLockHolder(file.host)) return inUse(file.host);
  const fs::path path(file.host);
  std::error_code error;
  for (const fs::path& needed : {path, path.parent_path()}) {
    if (fs::exists(needed, error) && ::access(needed.c_str(), W_OK) != 0)
      return file.host + " can't be made: " + std::generic_category().message(errno) + ".";
  }
  const bool readOnly = fs::exists(path, error) &&
                        (fs::status(path, error).permissions() & fs::perms::owner_write) == fs::perms::none;
  return file.host + " can't be made" + (readOnly ? ": it is read-only." : ".");
}

std::string openFailure(const ProjectFile& file, HRESULT status) {
  if (status == STG_E_SHAREVIOLATION) return inUse(file.host);
  if (status == STG_E_INVALIDHEADER) return file.host + " is not a project file.";
  return file.host + " can't be opened: " + describe(status) + ".";
}

}  // namespace forgeyard::workbench
