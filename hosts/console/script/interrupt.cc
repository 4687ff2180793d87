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
std::atomic<int> handled{0};

constexpr unsigned kGrace = 1;  // seconds

// Setting an event is one write to a descriptor.
void onSignal(int) {
  const int error = errno;
  if (++count >= kLast) ::_exit(static_cast<int>(ExitCode::Stopped));
  if (Event* event = current.load()) event->set();
  ::alarm(kGrace);
  errno = error;
}

// The script hasn't come to its next instruction. Restarts where something else answers the event.
void onAlarm(int) {
  if (handled.load() == 0) ::_exit(static_cast<int>(ExitCode::Stopped));
  ::alarm(kGrace);
}

}  // namespace

Interrupt::Handled::Handled() noexcept {
  ++handled;
}

Interrupt::Handled::~Handled() {
  --handled;
}

Interrupt::Interrupt() {
  count = 0;
  current = &event_;
  struct sigaction action {};
  sigemptyset(&action.sa_mask);
  action.sa_handler = onAlarm;
  ::sigaction(SIGALRM, &action, &alarmBefore_);
  action.sa_handler = onSignal;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], nullptr, &before_[i]);
    // Those that this process ignores on the wish of whoever started it (nohup) stay ignored.
    if (before_[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &action, nullptr);
  }
}

Interrupt::~Interrupt() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) ::sigaction(kSignals[i], &before_[i], nullptr);
  ::alarm(0);
  ::sigaction(SIGALRM, &alarmBefore_, nullptr);
  current = nullptr;
}

}  // namespace forgeyard::console
