#include "platform/threads/timer.h"

#include <sys/timerfd.h>

#include <algorithm>

#include "platform/files/os_error.h"

namespace forgeyard {

Timer::Timer(std::chrono::milliseconds delay)
    : fd_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
  if (!fd_) detail::throwErrno("making a timer");
  // Zero would mean that it never fires.
  const auto nanoseconds =
      std::max(std::chrono::nanoseconds(1), std::chrono::duration_cast<std::chrono::nanoseconds>(delay));
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(nanoseconds);
  itimerspec when{};
  when.it_value.tv_sec = seconds.count();
  when.it_value.tv_nsec = (nanoseconds - seconds).count();
  if (::timerfd_settime(fd_.get(), 0, &when, nullptr) != 0) detail::throwErrno("starting a timer");
}

}  // namespace forgeyard
