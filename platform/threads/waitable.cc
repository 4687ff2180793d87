#include "platform/threads/waitable.h"

#include <poll.h>

#include <array>
#include <cerrno>
#include <vector>

#include "platform/files/os_error.h"
#include "platform/threads/poll.h"

namespace forgeyard {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr short signalledBits = POLLIN | POLLHUP | POLLERR;

// poll() that goes on after a signal with what is left of the timeout.
int pollAgain(std::span<pollfd> entries, milliseconds timeout) {
  const bool forever = timeout < milliseconds::zero();
  const Clock::time_point deadline = forever ? Clock::time_point() : Clock::now() + timeout;
  for (;;) {
    const int count =
        ::poll(entries.data(), entries.size(), forever ? -1 : static_cast<int>(timeout.count()));
    if (count >= 0) return count;
    if (errno != EINTR) detail::throwErrno("waiting for " + std::to_string(entries.size()) + " handles");
    if (forever) continue;
    timeout = std::max(milliseconds::zero(), std::chrono::ceil<milliseconds>(deadline - Clock::now()));
  }
}

std::optional<std::size_t> firstSignalled(std::span<const pollfd> entries) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].revents & POLLNVAL) detail::throwErrno("waiting for handle " + std::to_string(i), EBADF);
    if (entries[i].revents & signalledBits) return i;
  }
  return std::nullopt;
}

}  // namespace

bool detail::isReadable(int fd) noexcept {
  pollfd entry{fd, POLLIN, 0};
  return retry([&] { return ::poll(&entry, 1, 0); }) == 1 && (entry.revents & signalledBits);
}

std::optional<std::size_t> detail::pollFirst(Waitables handles, const Waitable* wake, milliseconds timeout) {
  std::array<pollfd, 16> few;
  std::vector<pollfd> many;
  const std::size_t count = handles.size() + (wake ? 1 : 0);
  if (count > few.size()) many.resize(count);
  const std::span<pollfd> entries(many.empty() ? few.data() : many.data(), count);
  for (std::size_t i = 0; i < handles.size(); ++i) entries[i] = {handles[i]->descriptor(), POLLIN, 0};
  if (wake) entries.back() = {wake->descriptor(), POLLIN, 0};
  if (pollAgain(entries, timeout) == 0) return std::nullopt;
  return firstSignalled(entries);
}

bool Waitable::isSignalled() const noexcept {
  return detail::isReadable(descriptor());
}

std::optional<std::size_t> waitAny(Waitables handles, milliseconds timeout) {
  return detail::pollFirst(handles, nullptr, timeout);
}

}  // namespace forgeyard
