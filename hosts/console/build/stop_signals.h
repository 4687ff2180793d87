#pragma once

#include <signal.h>

#include <optional>

#include "platform/files/descriptor.h"
#include "platform/threads/waitable.h"

namespace forgeyard::console {

// The user's ways to say stop (SIGINT, SIGTERM, SIGHUP) as a handle to wait for, in place of their default
// action: for the life time of this object they are blocked in this thread and in threads that it starts. Is
// signalled while one waits to be taken. Children that are started through Process have them unblocked.
class StopSignals final : public Waitable {
 public:
  // Throws std::system_error when the process is out of descriptors.
  StopSignals();
  ~StopSignals() override;

  int descriptor() const noexcept override { return fd_.get(); }
  // The number of the signal that came, or nothing.
  std::optional<int> take() noexcept;

 private:
  sigset_t before_{};
  Descriptor fd_;
};

}  // namespace forgeyard::console
