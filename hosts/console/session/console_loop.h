#pragma once

#include <functional>
#include <utility>

#include "hosts/console/services/line_writer.h"
#include "platform/threads/event.h"
#include "platform/threads/message_loop.h"

namespace forgeyard::console {

// The loop under the main thread's apartment: one poll over what the caller waits for, one more handle of the
// host's own (the user's stop signals), and the time at which waiting output has to leave. Borrows the
// writer.
class ConsoleLoop final : public MessageLoop {
 public:
  explicit ConsoleLoop(LineWriter& output) : output_(output) {}

  // Calls `signalled` from inside wait() whenever the handle is signalled; it has to take the signal away,
  // and must leave everything else to a call that it posts. Null ends that. Apartment's thread.
  void watch(const Waitable* handle, std::function<void()> signalled);

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
  const Waitable* watched_ = nullptr;
  std::function<void()> signalled_;
  std::function<void()> outputLost_;
};

}  // namespace forgeyard::console
