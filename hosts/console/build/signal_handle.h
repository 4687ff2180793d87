#pragma once

#include <signal.h>

#include <optional>
#include <span>

#include "platform/files/descriptor.h"
#include "platform/threads/waitable.h"

namespace forgeyard::console {

// Signals as a handle to wait for, in place of their default action: for the life time of this object they
// are blocked in this thread and in threads that it starts. Is signalled while one waits to be taken. Those
// that the process ignores on the wish of whoever started it (nohup) stay ignored. Children that are started
// through Process have them unblocked.
class SignalHandle : public Waitable {
 public:
  // Throws std::system_error when the process is out of descriptors.
  explicit SignalHandle(std::span<const int> signals);
  SignalHandle(const SignalHandle&) = delete;
  SignalHandle& operator=(const SignalHandle&) = delete;
  ~SignalHandle() override;

  int descriptor() const noexcept override { return fd_.get(); }
  // The number of the signal that came, or nothing.
  std::optional<int> take() noexcept;

 private:
  sigset_t before_{};
  Descriptor fd_;
};

}  // namespace forgeyard::console
