#include "platform/files/host_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "platform/files/copy_file.h"
#include "platform/files/descriptor.h"
#include "platform/files/os_error.h"
#include "platform/files/spelled_host.h"

namespace forgeyard {
namespace {

using detail::errorOf;
using detail::lastError;

constexpr FileTime nanosecondsInSecond = 1'000'000'000;

// Asks the system only where the permission bits leave the answer open.
bool isReadable(const struct statx& info, const char* hostPath) {
  constexpr unsigned everybody = S_IRUSR | S_IRGRP | S_IROTH;
  if ((info.stx_mode & everybody) == everybody) return true;
  if (info.stx_uid == ::geteuid() && (info.stx_mode & S_IRUSR)) return true;
  return ::faccessat(AT_FDCWD, hostPath, R_OK, AT_EACCESS) == 0;
}

bool look(const char* hostPath, int flags, struct statx& info) {
  constexpr unsigned wanted = STATX_TYPE | STATX_MODE | STATX_NLINK | STATX_UID | STATX_MTIME | STATX_SIZE;
  return ::statx(AT_FDCWD, hostPath, AT_STATX_SYNC_AS_STAT | flags, wanted, &info) == 0;
}

// A file that is mounted by itself belongs to another directory; a kernel that can't tell counts as a yes.
bool isPlain(const struct statx& info) {
  return S_ISREG(info.stx_mode) && info.stx_nlink == 1 &&
         (info.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) && !(info.stx_attributes & STATX_ATTR_MOUNT_ROOT);
}

std::optional<FileStatus> statusAt(const char* hostPath) {
  struct statx info {};
  if (!look(hostPath, AT_SYMLINK_NOFOLLOW, info)) return std::nullopt;
  FileStatus status;
  status.plain = isPlain(info);
  if (S_ISLNK(info.stx_mode) && !look(hostPath, 0, info)) return std::nullopt;
  status.directory = S_ISDIR(info.stx_mode);
  status.readOnly = !(info.stx_mode & S_IWUSR);
  status.readable = isReadable(info, hostPath);
  status.modified = info.stx_mtime.tv_sec * nanosecondsInSecond + info.stx_mtime.tv_nsec;
  status.size = info.stx_size;
  return status;
}

std::error_code readAll(int fd, std::size_t limit, std::string& contents) {
  std::string read;
  struct stat info {};
  if (::fstat(fd, &info) != 0) return lastError();
  if (S_ISDIR(info.st_mode)) return errorOf(EISDIR);
  if (!S_ISREG(info.st_mode)) return errorOf(EINVAL);
  // One byte more than expected tells the end from a file that grew.
  std::size_t capacity = static_cast<std::size_t>(info.st_size) + 1;
  for (;;) {
    if (read.size() > limit || capacity - 1 > limit) return errorOf(EFBIG);
    const std::size_t filled = read.size();
    read.resize(capacity);
    const ssize_t count = detail::retry([&] { return ::read(fd, read.data() + filled, capacity - filled); });
    if (count < 0) return lastError();
    read.resize(filled + static_cast<std::size_t>(count));
    if (count == 0) break;
    if (read.size() == capacity) capacity = std::min(capacity * 2 - 1, limit) + 1;
  }
  contents = std::move(read);
  return {};
}

class HostFileSystem : public FileSystem {
 public:
  // One system call for a path that exists as it is spelled; the look-up comes after a miss only.
  std::optional<FileStatus> status(const BString& path) override {
    const SpelledHost spelled(path);
    if (!spelled) return std::nullopt;
    if (const auto found = statusAt(spelled.c_str())) return found;
    if (errno != ENOENT && errno != ENOTDIR) return std::nullopt;
    const auto place = existingHost(path);
    auto found = place ? statusAt(place->c_str()) : std::nullopt;
    if (found) found->plain = false;
    return found;
  }

  bool isWatchable() const noexcept override { return true; }

  std::error_code createDirectory(const BString& path) override {
    const auto place = toHost(path);
    if (!place) return errorOf(ENOENT);
    if (::mkdir(place->c_str(), 0777) == 0) return {};
    const std::error_code error = lastError();
    const auto standing = statusAt(place->c_str());
    return standing && standing->directory ? std::error_code() : error;
  }

  std::error_code deleteFile(const BString& path) override {
    const auto place = existingHost(path);
    if (!place) return errorOf(ENOENT);
    struct stat info {};
    if (::lstat(place->c_str(), &info) != 0) return lastError();
    if (S_ISDIR(info.st_mode)) return errorOf(EISDIR);
    if (!(info.st_mode & S_IWUSR)) return errorOf(EACCES);
    return ::unlink(place->c_str()) == 0 ? std::error_code() : lastError();
  }

  std::error_code copyFile(const BString& from, const BString& to) override {
    const auto source = existingHost(from);
    const auto destination = toHost(to);
    return source && destination ? detail::copyFile(*source, *destination) : errorOf(ENOENT);
  }

  std::error_code createEmpty(const BString& path) override {
    const auto place = toHost(path);
    if (!place) return errorOf(ENOENT);
    const auto standing = statusAt(place->c_str());
    if (standing && standing->directory) return errorOf(EISDIR);
    if (standing && standing->readOnly) return errorOf(EACCES);
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    const Descriptor file(::open(place->c_str(), flags, 0666));
    return file ? std::error_code() : lastError();
  }

  std::error_code setReadOnly(const BString& path, bool readOnly) override {
    const auto place = existingHost(path);
    if (!place) return errorOf(ENOENT);
    struct stat info {};
    if (::stat(place->c_str(), &info) != 0) return lastError();
    constexpr mode_t writers = S_IWUSR | S_IWGRP | S_IWOTH;
    const mode_t mode = readOnly ? info.st_mode & ~writers : info.st_mode | S_IWUSR;
    return ::chmod(place->c_str(), mode & 07777) == 0 ? std::error_code() : lastError();
  }

  std::error_code readWhole(const BString& path, std::size_t limit, std::string& contents) override {
    const auto place = existingHost(path);
    if (!place) return errorOf(ENOENT);
    const Descriptor file(::open(place->c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return file ? readAll(file.get(), limit, contents) : lastError();
  }
};

}  // namespace

FileSystem& hostFiles() {
  static FileSystem& instance = *new HostFileSystem;
  return instance;
}

}  // namespace forgeyard
