#include "hosts/console/script/interrupt.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "hosts/console/base/exit_code.h"
#include "workbench/base/failure.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

constexpr int kLast = 3;

std::atomic<Event*> current{nullptr};
std::atomic<int> count{0};

// Setting an event is one write to a descriptor.
void onSignal(int) {
  const int error = errno;
  if (++count >= kLast) ::_exit(static_cast<int>(ExitCode::Stopped));
  if (Event* event = current.load()) event->set();
  errno = error;
}

}  // namespace

Interrupt::Interrupt() {
  count = 0;
  current = &event_;
  struct sigaction action {};
  action.sa_handler = onSignal;
  sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], nullptr, &before_[i]);
    // Those that this process ignores on the wish of whoever started it (nohup) stay ignored.
    if (before_[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &action, nullptr);
  }
}

Interrupt::~Interrupt() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) ::sigaction(kSignals[i], &before_[i], nullptr);
  current = nullptr;
}

}  // namespace forgeyard::console
