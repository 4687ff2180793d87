#include "platform/files/copy_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/files/os_error.h"

namespace forgeyard::detail {
namespace {

bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = retry([&] { return ::write(fd, bytes.data(), bytes.size()); });
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool copyBytes(int from, int to) {
  std::vector<char> buffer(std::size_t{128} * 1024);
  for (;;) {
    const ssize_t count = retry([&] { return ::read(from, buffer.data(), buffer.size()); });
    if (count <= 0) return count == 0;
    if (!writeAll(to, {buffer.data(), static_cast<std::size_t>(count)})) return false;
  }
}

// A new file beside the destination, which takes its place when it is whole, and is removed otherwise.
class Replacement {
 public:
  explicit Replacement(const std::string& target)
      : target_(target), name_(target.substr(0, target.rfind('/') + 1) + ".copy-XXXXXX") {
    fd_.reset(::mkostemp(name_.data(), O_CLOEXEC));
  }
  ~Replacement() {
    if (fd_) ::unlink(name_.c_str());
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  int fd() const { return fd_.get(); }
  bool commit(const struct stat& like) {
    const timespec times[2] = {like.st_atim, like.st_mtim};
    if (::fchmod(fd(), like.st_mode & 0777) != 0 || ::futimens(fd(), times) != 0 || ::fsync(fd()) != 0 ||
        ::rename(name_.c_str(), target_.c_str()) != 0) {
      return false;
    }
    fd_.reset();
    return true;
  }

 private:
  std::string target_;
  std::string name_;
  Descriptor fd_;
};

// Follows the links of a destination that exists; a new one stays as it is.
std::string linkTarget(const std::string& path) {
  char resolved[PATH_MAX];
  return ::realpath(path.c_str(), resolved) ? std::string(resolved) : path;
}

int refusal(const struct stat& source, const struct stat& destination) {
  if (S_ISDIR(destination.st_mode)) return EISDIR;
  if (!S_ISREG(destination.st_mode)) return EINVAL;
  if (source.st_dev == destination.st_dev && source.st_ino == destination.st_ino) return EINVAL;
  return destination.st_mode & S_IWUSR ? 0 : EACCES;
}

}  // namespace

std::error_code copyFile(const std::string& from, const std::string& to) {
  const Descriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat info {};
  if (!source || ::fstat(source.get(), &info) != 0) return lastError();
  if (S_ISDIR(info.st_mode)) return errorOf(EISDIR);
  if (!S_ISREG(info.st_mode)) return errorOf(EINVAL);
  struct stat existing {};
  if (::stat(to.c_str(), &existing) == 0) {
    if (const int error = refusal(info, existing)) return errorOf(error);
  }
  Replacement replacement(linkTarget(to));
  if (replacement.fd() < 0 || !copyBytes(source.get(), replacement.fd()) || !replacement.commit(info)) {
    return lastError();
  }
  return {};
}

}  // namespace forgeyard::detail
