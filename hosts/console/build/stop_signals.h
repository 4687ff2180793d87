#pragma once

#include <array>

#include "hosts/console/build/signal_handle.h"

namespace forgeyard::console {

// The user's ways to say stop.
class StopSignals final : public SignalHandle {
 public:
  // Throws std::system_error when the process is out of descriptors.
  StopSignals() : SignalHandle(kSignals) {}

 private:
  static constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};
};

}  // namespace forgeyard::console
