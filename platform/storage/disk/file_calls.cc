#include "platform/storage/disk/file_calls.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace forgeyard::compound {

int FileCalls::open(int directory, const char* name, int flags, mode_t mode) {
  return ::openat(directory, name, flags | O_CLOEXEC, mode);
}

ssize_t FileCalls::read(int file, void* bytes, std::size_t count, off_t offset) {
  return ::pread(file, bytes, count, offset);
}

ssize_t FileCalls::write(int file, const void* bytes, std::size_t count, off_t offset) {
  return ::pwrite(file, bytes, count, offset);
}

int FileCalls::sync(int file) {
  return ::fsync(file);
}

int FileCalls::link(int file, int directory, const char* name) {
  // The way through /proc needs no privilege, unlike AT_EMPTY_PATH.
  const std::string self = "/proc/self/fd/" + std::to_string(file);
  return ::linkat(AT_FDCWD, self.c_str(), directory, name, AT_SYMLINK_FOLLOW);
}

int FileCalls::rename(int directory, const char* from, const char* to) {
  return ::renameat(directory, from, directory, to);
}

int FileCalls::renameNew(int directory, const char* from, const char* to) {
  if (::renameat2(directory, from, directory, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return -1;
  // File systems without the flag have hard links, which never replace.
  if (::linkat(directory, from, directory, to, 0) != 0) return -1;
  return ::unlinkat(directory, from, 0);
}

int FileCalls::unlink(int directory, const char* name) {
  return ::unlinkat(directory, name, 0);
}

FileCalls& FileCalls::system() noexcept {
  static FileCalls calls;
  return calls;
}

}  // namespace forgeyard::compound
