#pragma once

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/storage/disk/file_calls.h"

namespace forgeyard {

// System calls that fail, or that the process doesn't survive, from the n-th changing one on.
class FaultyCalls : public compound::FileCalls {
 public:
  enum class Fault { None, Error, Death };

  // From the next call that changes something on, let `calls` of them succeed.
  void arm(Fault fault, int calls, int error = 0) {
    fault_ = fault;
    left_ = calls;
    error_ = error;
  }
  // File systems that lack files without names.
  bool noUnnamedFiles = false;
  // For tests that commit hundreds of times.
  bool noSync = false;

  int open(int directory, const char* name, int flags, mode_t mode) override {
    const bool unnamed = (flags & O_TMPFILE) == O_TMPFILE;
    if (noUnnamedFiles && unnamed) return fail(EOPNOTSUPP);
    if ((unnamed || (flags & O_CREAT) != 0) && strikes('o')) return -1;
    return FileCalls::open(directory, name, flags, mode);
  }
  ssize_t read(int file, void* bytes, std::size_t count, off_t offset) override {
    ++reads;
    return FileCalls::read(file, bytes, count, offset);
  }
  ssize_t write(int file, const void* bytes, std::size_t count, off_t offset) override {
    if (strikes('w')) {
      // A disk that is full takes what still fits.
      if (fault_ == Fault::Error && FileCalls::write(file, bytes, count / 2, offset) < 0) return -1;
      return fail(error_);
    }
    return FileCalls::write(file, bytes, count, offset);
  }
  int sync(int file) override { return strikes('s') ? -1 : noSync ? 0 : FileCalls::sync(file); }
  int link(int file, int directory, const char* name) override {
    return strikes('l') ? -1 : FileCalls::link(file, directory, name);
  }
  int rename(int directory, const char* from, const char* to) override {
    return strikes('r') ? -1 : FileCalls::rename(directory, from, to);
  }
  int renameNew(int directory, const char* from, const char* to) override {
    return strikes('r') ? -1 : FileCalls::renameNew(directory, from, to);
  }

  int reads = 0;
  std::string log;  // a letter for each changing call: o w s l r

 private:
  static int fail(int error) {
    errno = error;
    return -1;
  }
  bool strikes(char call) {
    log += call;
    if (fault_ == Fault::None || left_-- > 0) return false;
    if (fault_ == Fault::Death) ::kill(::getpid(), SIGKILL);
    errno = error_;
    return true;
  }

  Fault fault_ = Fault::None;
  int left_ = 0;
  int error_ = 0;
};

}  // namespace forgeyard
