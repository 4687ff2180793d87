#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/registry/registry.h"

namespace forgeyard {
namespace {

constexpr std::size_t kMaximumSize = std::size_t{16} << 20;  // in bytes; far beyond anything made by hand
constexpr int kMaximumLinks = 40;

using MaybeError = std::optional<RegistryError>;

RegistryError failure(const std::string& file, const char* what, int code) {
  return {file + ": " + what + ": " + std::strerror(code), code};
}

RegistryError refusal(const std::string& file, const char* why, int code) {
  return {file + ": " + why, code};
}

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  explicit operator bool() const { return fd_ >= 0; }
  int get() const { return fd_; }
  int close() { return ::close(std::exchange(fd_, -1)); }

 private:
  int fd_;
};

MaybeError readAll(const std::string& file, int fd, std::size_t expected, std::string& content) {
  content.resize(expected + 1);  // one more, so that the end shows without another call
  std::size_t filled = 0;
  while (true) {
    const ssize_t count = ::read(fd, content.data() + filled, content.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return failure(file, "the registry can't be read", errno);
    filled += static_cast<std::size_t>(count);
    if (count == 0 || (filled == expected && expected > 0)) break;
    if (filled > kMaximumSize) return refusal(file, "the registry is larger than 16 MB", EFBIG);
    if (filled == content.size()) content.resize(content.size() * 2);
  }
  content.resize(filled);
  return std::nullopt;
}

// A file that isn't there has no content.
MaybeError readFile(const std::string& file, std::string& content) {
  const Descriptor fd(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!fd) {
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    return failure(file, "the registry can't be opened", errno);
  }
  struct stat status {};
  if (::fstat(fd.get(), &status) != 0) return failure(file, "the registry can't be read", errno);
  if (!S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode)) {
    return refusal(file, "the registry must be a plain file", EINVAL);
  }
  if (status.st_size > static_cast<off_t>(kMaximumSize)) {
    return refusal(file, "the registry is larger than 16 MB", EFBIG);
  }
  return readAll(file, fd.get(), static_cast<std::size_t>(status.st_size), content);
}

std::string directoryOf(const std::string& file) {
  const std::size_t slash = file.rfind('/');
  if (slash == file.npos) return ".";
  return slash == 0 ? "/" : file.substr(0, slash);
}

// The file itself behind any symbolic links, which may lead to a file that is yet to be made.
MaybeError followLinks(std::string& file) {
  const std::string named = file;
  for (int links = 0; links < kMaximumLinks; ++links) {
    char target[4096];
    const ssize_t length = ::readlink(file.c_str(), target, sizeof target);
    if (length < 0) return std::nullopt;
    if (static_cast<std::size_t>(length) == sizeof target) {
      return failure(named, "the registry can't be opened", ENAMETOOLONG);
    }
    const std::string next(target, static_cast<std::size_t>(length));
    file = next.starts_with('/') ? next : directoryOf(file).append("/").append(next);
  }
  return failure(named, "the registry can't be opened", ELOOP);
}

MaybeError makeDirectories(const std::string& directory) {
  if (::mkdir(directory.c_str(), 0777) == 0 || errno == EEXIST) return std::nullopt;
  if (errno == ENOENT && directory != "." && directory != "/") {
    if (MaybeError error = makeDirectories(directoryOf(directory))) return error;
    if (::mkdir(directory.c_str(), 0777) == 0 || errno == EEXIST) return std::nullopt;
  }
  return failure(directory, "the registry's directory can't be made", errno);
}

// The lock is a file of its own that stays for ever: the registry's file is replaced at each change, and a
// lock on a file that somebody has replaced locks nothing.
MaybeError lock(const std::string& lockFile, int fd) {
  if (fd < 0) return failure(lockFile, "the registry's lock can't be opened", errno);
  while (::flock(fd, LOCK_EX) != 0) {
    if (errno != EINTR) return failure(lockFile, "the registry can't be locked", errno);
  }
  return std::nullopt;
}

bool writeAll(int fd, std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = ::write(fd, content.data(), content.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    content.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

// Owner and mode as those of the file that is going to be replaced. Only a privileged user can and need keep
// another owner.
bool copyAccess(const std::string& file, int fd) {
  struct stat old {};
  struct stat fresh {};
  if (::stat(file.c_str(), &old) != 0) return errno == ENOENT;
  if (::fstat(fd, &fresh) != 0) return false;
  if ((old.st_uid != fresh.st_uid || old.st_gid != fresh.st_gid) &&
      ::fchown(fd, old.st_uid, old.st_gid) != 0 && errno != EPERM) {
    return false;
  }
  return ::fchmod(fd, old.st_mode & 07777) == 0;
}

bool writeNew(const std::string& file, const std::string& fresh, std::string_view content) {
  ::unlink(fresh.c_str());  // left behind by a writer that was killed; the lock is ours
  Descriptor fd(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  return fd && copyAccess(file, fd.get()) && writeAll(fd.get(), content) && ::fsync(fd.get()) == 0 &&
         fd.close() == 0 && ::rename(fresh.c_str(), file.c_str()) == 0;
}

MaybeError replaceFile(const std::string& file, std::string_view content) {
  struct stat status {};
  const bool exists = ::stat(file.c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode)) return refusal(file, "the registry must be a plain file", EINVAL);
  if (exists && ::access(file.c_str(), W_OK) != 0) {
    return failure(file, "the registry can't be written and is unchanged", errno);
  }
  const std::string fresh = file + ".new";
  if (!writeNew(file, fresh, content)) {
    const int code = errno;
    ::unlink(fresh.c_str());
    return failure(file, "the registry can't be written and is unchanged", code);
  }
  const Descriptor directory(::open(directoryOf(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory) ::fsync(directory.get());  // the content is safe either way: the old one or the new one
  return std::nullopt;
}

MaybeError changeFile(const std::string& file, const std::function<void(Registry&)>& change) {
  std::string content;
  if (MaybeError error = readFile(file, content)) return error;
  Registry registry = Registry::parse(content);
  change(registry);
  const std::string changed = registry.text();
  return changed == content ? std::nullopt : replaceFile(file, changed);
}

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

std::string Registry::defaultFile() {
  if (std::string file = environment("FORGEYARD_REGISTRY"); !file.empty()) return file;
  // A relative directory is to be ignored there.
  if (std::string directory = environment("XDG_CONFIG_HOME"); directory.starts_with('/')) {
    return directory + "/forgeyard/registry";
  }
  if (std::string home = environment("HOME"); !home.empty()) return home + "/.config/forgeyard/registry";
  return {};
}

Registry Registry::load(const std::string& file, std::optional<RegistryError>* error) {
  std::string content;
  MaybeError problem = readFile(file, content);
  if (problem) content.clear();
  if (error) *error = std::move(problem);
  return parse(content);
}

std::optional<RegistryError> Registry::update(const std::string& file,
                                              const std::function<void(Registry&)>& change) {
  if (file.empty()) return RegistryError{"no registry file is named, and there is no home directory", ENOENT};
  std::string target = file;
  if (MaybeError error = followLinks(target)) return error;
  if (MaybeError error = makeDirectories(directoryOf(target))) return error;
  const std::string lockFile = target + ".lock";
  const Descriptor fd(::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (MaybeError error = lock(lockFile, fd.get())) return error;
  return changeFile(target, change);
}

}  // namespace forgeyard
