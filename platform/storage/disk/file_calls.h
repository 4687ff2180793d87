#pragma once

#include <sys/types.h>

#include <cstddef>

namespace forgeyard::compound {

// Every system call that can change a project file or fail while one is read or written: the seam at which
// tests let each of them fail, or let the process die. The results and errno are those of the system call.
class FileCalls {
 public:
  virtual ~FileCalls() = default;

  virtual int open(int directory, const char* name, int flags, mode_t mode);
  virtual ssize_t read(int file, void* bytes, std::size_t count, off_t offset);
  virtual ssize_t write(int file, const void* bytes, std::size_t count, off_t offset);
  virtual int sync(int file);
  // Gives a file that has no name yet a name.
  virtual int link(int file, int directory, const char* name);
  virtual int rename(int directory, const char* from, const char* to);
  // The same, failing with EEXIST if `to` exists.
  virtual int renameNew(int directory, const char* from, const char* to);
  virtual int unlink(int directory, const char* name);

  static FileCalls& system() noexcept;
};

}  // namespace forgeyard::compound
