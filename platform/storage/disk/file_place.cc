#include "platform/storage/disk/file_place.h"

#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <functional>
#include <utility>

#include "platform/storage/storage_status.h"

namespace forgeyard::compound {
namespace {

constexpr int kMaxLinks = 40;
constexpr mode_t kNewFileMode = 0666;  // less the process's mask

SharedFile openDirectory(FileCalls& calls, int base, const std::string& path) {
  int descriptor = calls.open(base, path.c_str(), O_RDONLY | O_DIRECTORY, 0);
  // A directory that may be searched but not listed still serves; it only can't be synced.
  if (descriptor < 0 && errno == EACCES) descriptor = calls.open(base, path.c_str(), O_PATH | O_DIRECTORY, 0);
  if (descriptor < 0)
    throw StatusError(errno == ENOENT ? STG_E_PATHNOTFOUND : statusOf(errno, Attempt::Read));
  return std::make_shared<HostFile>(calls, descriptor);
}

std::pair<std::string, std::string> splitPath(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return {".", path};
  return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

// The target of a link; nothing if the name is no link or doesn't exist.
std::optional<std::string> readLink(int directory, const std::string& name) {
  std::array<char, PATH_MAX> target;
  const ssize_t length = ::readlinkat(directory, name.c_str(), target.data(), target.size());
  if (length < 0) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(length));
}

std::string hexadecimal(std::size_t value) {
  std::string text;
  for (int shift = 60; shift >= 0; shift -= 4) text += "0123456789abcdef"[(value >> shift) & 15];
  return text;
}

}  // namespace

FilePlace FilePlace::resolve(FileCalls& calls, const std::string& path) {
  std::string rest = path;
  SharedFile base;
  for (int links = 0; links <= kMaxLinks; ++links) {
    const auto [directory, name] = splitPath(rest);
    if (path.empty()) throw StatusError(STG_E_INVALIDNAME);
    // A path that ends in a slash or in dots names a directory, which is no file to open or to replace.
    if (name.empty() || name == "." || name == "..") throw StatusError(STG_E_ACCESSDENIED);
    base = openDirectory(calls, base ? base->descriptor() : AT_FDCWD, directory);
    std::optional<std::string> target = readLink(base->descriptor(), name);
    if (!target) return {std::move(base), name};
    rest = *std::move(target);
  }
  throw StatusError(statusOf(ELOOP, Attempt::Read));
}

std::string FilePlace::savingName() const {
  constexpr std::string_view kSuffix = ".saving";
  std::string plain = "." + name_ + std::string(kSuffix);
  if (plain.size() <= NAME_MAX) return plain;
  return "." + name_.substr(0, NAME_MAX / 2) + hexadecimal(std::hash<std::string>{}(name_)) +
         std::string(kSuffix);
}

SharedFile FilePlace::open(int flags) const {
  // O_NONBLOCK: a pipe in the file's place must not hold the caller up.
  const int descriptor =
      calls().open(directory(), name_.c_str(), flags | O_NONBLOCK | O_NOCTTY, kNewFileMode);
  if (descriptor < 0) throwErrno(Attempt::Read);
  return std::make_shared<HostFile>(calls(), descriptor);
}

SharedFile FilePlace::openUnnamed() const {
  const int descriptor = calls().open(directory(), ".", O_TMPFILE | O_RDWR, kNewFileMode);
  if (descriptor >= 0) return std::make_shared<HostFile>(calls(), descriptor);
  if (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL || errno == ENOENT) return nullptr;
  throwErrno(Attempt::Write);
}

std::optional<struct stat> FilePlace::status() const {
  struct stat status {};
  if (::fstatat(directory(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return status;
  if (errno == ENOENT) return std::nullopt;
  throwErrno(Attempt::Read);
}

bool FilePlace::holds(const HostFile& file) const {
  const std::optional<struct stat> there = status();
  const struct stat own = file.status();
  return there && there->st_dev == own.st_dev && there->st_ino == own.st_ino;
}

void FilePlace::syncDirectory() const {
  if (calls().sync(directory()) == 0) return;
  // Some file systems, and a directory that can't be listed, refuse; there is nothing more to do there.
  if (errno != EINVAL && errno != EBADF && errno != ENOTSUP) throwErrno(Attempt::Write);
}

}  // namespace forgeyard::compound
