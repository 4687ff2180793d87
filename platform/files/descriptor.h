#pragma once

#include <utility>

namespace forgeyard {

// Owns one file descriptor and closes it; -1 is none. Every descriptor in it was opened close-on-exec.
class Descriptor {
 public:
  Descriptor() noexcept = default;
  explicit Descriptor(int owned) noexcept : fd_(owned) {}
  Descriptor(Descriptor&& other) noexcept : fd_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~Descriptor() { reset(); }

  int get() const noexcept { return fd_; }
  explicit operator bool() const noexcept { return fd_ >= 0; }
  int release() noexcept { return std::exchange(fd_, -1); }
  void reset(int owned = -1) noexcept;

 private:
  int fd_ = -1;
};

}  // namespace forgeyard
