#pragma once

#include <memory>
#include <string_view>

#include "platform/files/descriptor.h"
#include "platform/threads/waitable.h"

namespace forgeyard {

// An event that all processes of this user share by name; it stays set until it is reset. It lives as long as
// any process holds it, and is not set when it comes to life. A holder that is killed leaves it as it is.
// Nothing needs cleaning up: the file left behind holds no state. Any thread.
class NamedEvent : public Waitable {
 public:
  // Makes it, or opens it if somebody holds it. Throws std::system_error that says which file and why.
  static std::unique_ptr<NamedEvent> create(std::string_view name);
  // Null if nobody holds it. Throws for other failures.
  static std::unique_ptr<NamedEvent> open(std::string_view name);

  // Wakes every waiter of every process.
  void set() noexcept;
  void reset() noexcept;
  bool isSet() const noexcept { return isSignalled(); }
  int descriptor() const noexcept override { return fd_.get(); }

 private:
  explicit NamedEvent(Descriptor fd) noexcept : fd_(std::move(fd)) {}

  Descriptor fd_;
};

}  // namespace forgeyard
