#include "platform/threads/runtime_directory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "platform/files/os_error.h"

namespace forgeyard {
namespace {

// Set and not empty.
const char* environment(const char* name) {
  const char* value = std::getenv(name);
  return value && *value ? value : nullptr;
}

bool plainName(std::string_view name) {
  constexpr std::string_view allowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.";
  return !name.empty() && name.front() != '.' && name.find_first_not_of(allowed) == std::string_view::npos;
}

}  // namespace

std::string runtimeDirectoryName() {
  if (const char* exact = environment("FORGEYARD_RUNTIME_DIR")) return exact;
  if (const char* session = environment("XDG_RUNTIME_DIR")) return std::string(session) + "/forgeyard";
  return "/tmp/forgeyard-" + std::to_string(::geteuid());
}

// Someone else could have put a directory there first, to hold our locks or listen to our events.
void requireOwnRuntimeDirectory(const std::string& directory) {
  const std::string what = "runtime directory " + directory;
  struct stat info {};
  if (::lstat(directory.c_str(), &info) != 0) detail::throwErrno(what);
  if (S_ISLNK(info.st_mode)) detail::throwErrno(what + " is a symbolic link", ELOOP);
  if (!S_ISDIR(info.st_mode)) detail::throwErrno(what, ENOTDIR);
  if (info.st_uid != ::geteuid()) {
    detail::throwErrno(what + " belongs to user " + std::to_string(info.st_uid), EPERM);
  }
  if (info.st_mode & (S_IWGRP | S_IWOTH)) detail::throwErrno(what + " can be written by other users", EPERM);
}

std::string runtimeDirectory() {
  std::string directory = runtimeDirectoryName();
  if (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) {
    detail::throwErrno("making the runtime directory " + directory);
  }
  requireOwnRuntimeDirectory(directory);
  return directory;
}

std::string runtimeFile(std::string_view name, std::string_view extension) {
  if (!plainName(name)) detail::throwErrno("name \"" + std::string(name) + "\" of a shared object", EINVAL);
  return runtimeDirectory().append("/").append(name).append(extension);
}

}  // namespace forgeyard
