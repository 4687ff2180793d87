#pragma once

#include <signal.h>

#include <array>

#include "platform/threads/event.h"

namespace forgeyard::console {

// Ctrl-C, SIGTERM and SIGHUP while a script runs: for the life time of this object they set an event in place
// of their default action, and a third one ends the program. Programs that the script starts have the default
// action. One at a time.
class Interrupt {
 public:
  Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;
  ~Interrupt();

  const Event& event() const { return event_; }

 private:
  static constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

  Event event_;
  std::array<struct sigaction, kSignals.size()> before_{};
};

}  // namespace forgeyard::console
