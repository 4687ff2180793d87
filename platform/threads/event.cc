#include "platform/threads/event.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

#include "platform/files/os_error.h"

namespace forgeyard {

Event::Event() : fd_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!fd_) detail::throwErrno("making an event");
}

Event::~Event() {
  // The thread that set it may still be on its way out of write(): reading orders the two.
  reset();
}

void Event::set() noexcept {
  const std::uint64_t one = 1;
  // Full means set as well.
  static_cast<void>(detail::retry([&] { return ::write(fd_.get(), &one, sizeof one); }));
}

void Event::reset() noexcept {
  std::uint64_t count = 0;
  static_cast<void>(detail::retry([&] { return ::read(fd_.get(), &count, sizeof count); }));
}

}  // namespace forgeyard
