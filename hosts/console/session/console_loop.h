#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "hosts/console/services/line_writer.h"
#include "platform/threads/event.h"
#include "platform/threads/message_loop.h"

namespace forgeyard::console {

// The loop under the main thread's apartment: one poll over what the caller waits for, handles of the
// host's own (the user's stop signals, a client's requests), and the time at which waiting output has to
// leave. Borrows the writer.
class ConsoleLoop final : public MessageLoop {
 public:
  explicit ConsoleLoop(LineWriter& output) : output_(output) {}

  // Calls `signalled` from inside wait() whenever the handle is signalled; it has to take the signal away,
  // and must leave everything else to a call that it posts. Borrows the handle. Apartment's thread.
  void watch(const Waitable* handle, std::function<void()> signalled);
  void unwatch(const Waitable* handle);

  // Called once from inside wait(), when it turns out that standard output can't be written any more; as
  // above.
  void setOnOutputLost(std::function<void()> lost) { outputLost_ = std::move(lost); }

  std::optional<std::size_t> wait(Waitables handles) override;
  void wake() noexcept override { wake_.set(); }

 private:
  void flushOutput();
  void lookAtOutput();

  LineWriter& output_;
  Event wake_;
  std::vector<std::pair<const Waitable*, std::function<void()>>> watched_;
  std::function<void()> outputLost_;
};

}  // namespace forgeyard::console
