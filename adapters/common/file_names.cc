#include "adapters/common/file_names.h"

#include <sys/stat.h>

namespace forgeyard {
namespace {

constexpr std::string_view kSeparators = "/\\";

}  // namespace

std::string_view baseName(std::string_view path) noexcept {
  return path.substr(path.find_last_of(kSeparators) + 1);
}

std::string_view directoryPart(std::string_view path) noexcept {
  return path.substr(0, path.find_last_of(kSeparators) + 1);
}

bool beginsWithDrive(std::string_view path) noexcept {
  if (path.size() < 3 || path[1] != ':' || kSeparators.find(path[2]) == kSeparators.npos) return false;
  return (path[0] >= 'a' && path[0] <= 'z') || (path[0] >= 'A' && path[0] <= 'Z');
}

bool isAbsolute(std::string_view path) noexcept {
  return path.starts_with('\\') || path.starts_with('/') || beginsWithDrive(path);
}

std::string directoryOf(const std::string& hostPath) {
  const std::size_t slash = hostPath.rfind('/');
  return slash == hostPath.npos ? "." : hostPath.substr(0, slash == 0 ? 1 : slash);
}

mode_t kindOf(const std::string& hostPath) noexcept {
  struct stat status {};
  return ::stat(hostPath.c_str(), &status) == 0 ? status.st_mode & S_IFMT : 0;
}

bool sameFile(const std::string& a, const std::string& b) noexcept {
  struct stat left {};
  struct stat right {};
  return ::stat(a.c_str(), &left) == 0 && ::stat(b.c_str(), &right) == 0 && left.st_dev == right.st_dev &&
         left.st_ino == right.st_ino;
}

}  // namespace forgeyard
