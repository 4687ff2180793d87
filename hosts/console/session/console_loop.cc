#include "hosts/console/session/console_loop.h"

#include <utility>
#include <vector>

#include "platform/threads/poll.h"

namespace forgeyard::console {

void ConsoleLoop::watch(const Waitable* handle, std::function<void()> signalled) {
  watched_.emplace_back(handle, std::move(signalled));
}

void ConsoleLoop::unwatch(const Waitable* handle) {
  std::erase_if(watched_, [&](const auto& entry) { return entry.first == handle; });
}

void ConsoleLoop::lookAtOutput() {
  if (output_.state() == LineWriter::State::Open || !outputLost_) return;
  const std::function<void()> lost = std::exchange(outputLost_, nullptr);
  lost();
}

void ConsoleLoop::flushOutput() {
  output_.flush();
  lookAtOutput();
}

std::optional<std::size_t> ConsoleLoop::wait(Waitables handles) {
  lookAtOutput();
  for (;;) {
    // Anew in each round: a call back may have ended a watch.
    std::vector<const Waitable*> all;
    all.reserve(handles.size() + watched_.size());
    all.assign(handles.begin(), handles.end());
    for (const auto& entry : watched_) all.push_back(entry.first);
    if (output_.dueIn() == std::chrono::milliseconds::zero()) flushOutput();
    const auto index = detail::pollFirst(all, &wake_, output_.dueIn());
    if (!index) {
      flushOutput();
    } else if (*index < handles.size()) {
      return index;
    } else if (*index < all.size()) {
      const std::function<void()> signalled = watched_[*index - handles.size()].second;
      signalled();
    } else {
      wake_.reset();
      return std::nullopt;
    }
  }
}

}  // namespace forgeyard::console
