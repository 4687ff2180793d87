#include "hosts/console/build/stop_signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace forgeyard::console {

namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

// Those that this process ignores on the wish of whoever started it (nohup) stay ignored.
sigset_t wantedSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kSignals) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) sigaddset(&set, signal);
  }
  return set;
}

}  // namespace

StopSignals::StopSignals() {
  const sigset_t wanted = wantedSignals();
  ::pthread_sigmask(SIG_BLOCK, &wanted, &before_);
  fd_ = Descriptor(::signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK));
  if (fd_) return;
  const int error = errno;
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  throw std::system_error(error, std::generic_category(), "listening for signals");
}

StopSignals::~StopSignals() {
  // One that has come by now is answered already: the build is over.
  while (take()) {
  }
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

std::optional<int> StopSignals::take() noexcept {
  signalfd_siginfo info{};
  if (::read(fd_.get(), &info, sizeof info) != sizeof info) return std::nullopt;
  return static_cast<int>(info.ssi_signo);
}

}  // namespace forgeyard::console
