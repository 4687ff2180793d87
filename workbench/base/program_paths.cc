#include "workbench/base/program_paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace forgeyard::workbench {

std::string programDirectory() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string();
}

std::vector<std::string> searchPath() {
  const char* variable = std::getenv("PATH");
  std::string_view rest = variable ? variable : "/usr/local/bin:/usr/bin:/bin";
  std::vector<std::string> directories;
  while (!rest.empty()) {
    const std::size_t end = rest.find(':');
    // An empty entry means the current directory, where a project's own files lie: no place for tools.
    if (end != 0) directories.emplace_back(rest.substr(0, end));
    rest = end == rest.npos ? std::string_view() : rest.substr(end + 1);
  }
  return directories;
}

bool isExecutable(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::optional<std::string> findProgram(std::string_view name) {
  if (name.empty()) return std::nullopt;
  if (name.find('/') != name.npos) {
    std::string path(name);
    return isExecutable(path) ? std::optional(std::move(path)) : std::nullopt;
  }
  for (const std::string& directory : searchPath()) {
    std::string path = directory + "/" + std::string(name);
    if (isExecutable(path)) return path;
  }
  return std::nullopt;
}

}  // namespace forgeyard::workbench
