#include "hosts/console/session/console_loop.h"

#include <utility>
#include <vector>

#include "platform/threads/poll.h"

namespace forgeyard::console {

void ConsoleLoop::watch(const Waitable* handle, std::function<void()> signalled) {
  watched_ = handle;
  signalled_ = std::move(signalled);
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
  std::vector<const Waitable*> all;
  all.reserve(handles.size() + 1);
  all.assign(handles.begin(), handles.end());
  if (watched_) all.push_back(watched_);
  lookAtOutput();
  for (;;) {
    if (output_.dueIn() == std::chrono::milliseconds::zero()) flushOutput();
    const auto index = detail::pollFirst(all, &wake_, output_.dueIn());
    if (!index) {
      flushOutput();
    } else if (*index < handles.size()) {
      return index;
    } else if (*index < all.size()) {
      signalled_();
    } else {
      wake_.reset();
      return std::nullopt;
    }
  }
}

}  // namespace forgeyard::console
