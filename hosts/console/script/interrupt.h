#pragma once

#include <signal.h>

#include <array>

#include "platform/threads/event.h"

namespace forgeyard::console {

// Ctrl-C, SIGTERM and SIGHUP while a script runs: for the lifetime of this object they set an event instead
// of their default action. The script looks at the event between its instructions. If it is still running a
// second later, in a pattern or a finalizer for example, or if a third signal comes, the program ends at
// once. Programs that the script starts have the default action. One at a time.
class Interrupt {
 public:
  Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;
  ~Interrupt();

  const Event& event() const { return event_; }

  // While one exists the script waits for something that answers the event itself: the program isn't ended
  // after a second then.
  class Handled {
   public:
    Handled() noexcept;
    Handled(const Handled&) = delete;
    Handled& operator=(const Handled&) = delete;
    ~Handled();
  };

 private:
  static constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

  Event event_;
  std::array<struct sigaction, kSignals.size()> before_{};
  struct sigaction alarmBefore_ {};
};

}  // namespace forgeyard::console
