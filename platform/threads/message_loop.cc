#include "platform/threads/message_loop.h"

#include "platform/threads/poll.h"

namespace forgeyard {

std::optional<std::size_t> PollLoop::wait(Waitables handles) {
  const auto index = detail::pollFirst(handles, &wake_, std::chrono::milliseconds(-1));
  if (index && *index < handles.size()) return index;
  wake_.reset();
  return std::nullopt;
}

}  // namespace forgeyard
