#include "platform/storage/disk/host_file.h"

#include <sys/file.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

#include "platform/storage/storage_status.h"

namespace forgeyard::compound {

struct stat HostFile::status() const {
  struct stat status {};
  if (::fstat(descriptor_.get(), &status) != 0) throwErrno(Attempt::Read);
  return status;
}

std::uint64_t HostFile::size() const {
  return static_cast<std::uint64_t>(status().st_size);
}

std::size_t HostFile::readAt(std::uint64_t offset, std::span<std::uint8_t> out) const {
  std::size_t done = 0;
  while (done < out.size()) {
    const ssize_t got = calls_.read(descriptor_.get(), out.data() + done, out.size() - done,
                                    static_cast<off_t>(offset + done));
    if (got == 0) break;
    if (got > 0) {
      done += static_cast<std::size_t>(got);
    } else if (errno != EINTR) {
      throwErrno(Attempt::Read);
    }
  }
  return done;
}

void HostFile::writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t put =
        calls_.write(descriptor_.get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (put < 0) {
      if (errno == EINTR) continue;
      throwErrno(Attempt::Write);
    }
    bytes = bytes.subspan(static_cast<std::size_t>(put));
    offset += static_cast<std::uint64_t>(put);
  }
}

void HostFile::sync() {
  while (calls_.sync(descriptor_.get()) != 0) {
    if (errno != EINTR) throwErrno(Attempt::Write);
  }
}

void HostFile::discardContents() noexcept {
  if (::ftruncate(descriptor_.get(), 0) != 0) errno = 0;
}

void HostFile::requireAllowedSize(std::uint64_t bytes) {
  rlimit limit{};
  if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && bytes > limit.rlim_cur) {
    throw StatusError(STG_E_MEDIUMFULL);
  }
}

bool HostFile::tryLock() {
  int kind = LOCK_EX;
  while (::flock(descriptor_.get(), kind | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) return false;
    if (errno == EBADF && kind == LOCK_EX) {
      // Network file systems give an exclusive lock to writers only; a reader's lock keeps writers out.
      kind = LOCK_SH;
    } else if (errno != EINTR) {
      throwErrno(Attempt::Read);
    }
  }
  return true;
}

void HostFile::unlock() noexcept {
  ::flock(descriptor_.get(), LOCK_UN);
}

}  // namespace forgeyard::compound
