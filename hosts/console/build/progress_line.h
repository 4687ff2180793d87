#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "hosts/console/build/signal_handle.h"
#include "platform/threads/timer.h"

namespace forgeyard::console {

class Session;

// The last line of the terminal while a build is going on: what is being built, how much of it, for how long.
// It ticks by itself, follows the width of the window, keeps away while the job is in the background, and is
// gone with this object. Main thread only.
class ProgressLine {
 public:
  // Borrows the session.
  explicit ProgressLine(Session& session);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

  void componentStarted(std::string component);
  void componentEnded();
  void toolStarted(std::int32_t number, std::int32_t count, const std::string& file);

 private:
  using Clock = std::chrono::steady_clock;

  void startTimer();
  void takeSignals();
  void show();
  std::string text(std::size_t columns) const;

  Session& session_;
  Clock::time_point begin_ = Clock::now();
  std::string component_;  // empty while none has its turn
  std::string run_;        // which one of how many, "[3/12] "; empty until a tool has started
  std::string file_;
  std::optional<Timer> timer_;
  SignalHandle changes_;  // of the window, and whether this job has it
};

}  // namespace forgeyard::console
