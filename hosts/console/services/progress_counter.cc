#include "hosts/console/services/progress_counter.h"

#include <unistd.h>

#include <cstdio>

namespace forgeyard::console {

namespace {

constexpr std::chrono::milliseconds kBetween{200};
// Reading the clock for each of many files would cost more than the line is worth.
constexpr std::size_t kLook = 64;

}  // namespace

ProgressCounter::ProgressCounter(std::string what, bool quiet)
    : what_(std::move(what)),
      shown_(!quiet && ::isatty(STDERR_FILENO) == 1),
      next_(std::chrono::steady_clock::now() + kBetween) {}

ProgressCounter::~ProgressCounter() {
  if (written_) std::fputs("\r\033[K", stderr);
}

void ProgressCounter::step() {
  ++count_;
  if (!shown_ || count_ % kLook != 0) return;
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) return;
  next_ = now + kBetween;
  written_ = true;
  std::fputs(("\r" + std::to_string(count_) + " " + what_).c_str(), stderr);
}

}  // namespace forgeyard::console
