#include "hosts/console/project/project_file.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "hosts/console/base/failure.h"
#include "hosts/console/base/nearest.h"
#include "platform/paths/shell_path.h"

namespace forgeyard::console {

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

// The name that /proc has for the process; it may have gone by now.
std::string programOf(long process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  return name;
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

std::string lockHolder(const std::string& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return "";
  std::array<char, 64> wanted{};
  std::snprintf(wanted.data(), wanted.size(), "%02x:%02x:%lu", ::major(status.st_dev), ::minor(status.st_dev),
                static_cast<unsigned long>(status.st_ino));
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    // "1: FLOCK  ADVISORY  WRITE 4711 08:01:123456 0 EOF"; waiting ones have "->" behind the number.
    std::istringstream words(line);
    std::string number, kind, strictness, access, place;
    long process = 0;
    if (!(words >> number >> kind >> strictness >> access >> process >> place)) continue;
    if (place != wanted.data() || process <= 0) continue;
    const std::string program = programOf(process);
    return "process " + std::to_string(process) + (program.empty() ? "" : " (" + program + ")");
  }
  return "";
}

std::string openFailure(const ProjectFile& file, HRESULT status) {
  if (status == STG_E_SHAREVIOLATION) {
    const std::string holder = lockHolder(file.host);
    return file.host + " is open in " + (holder.empty() ? "another process" : holder) + ".";
  }
  if (status == STG_E_INVALIDHEADER) return file.host + " is not a project file.";
  return file.host + " can't be opened: " + describe(status) + ".";
}

}  // namespace forgeyard::console
