#include "hosts/console/build/signal_handle.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace forgeyard::console {

namespace {

sigset_t heeded(std::span<const int> signals) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : signals) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) sigaddset(&set, signal);
  }
  return set;
}

}  // namespace

SignalHandle::SignalHandle(std::span<const int> signals) {
  const sigset_t wanted = heeded(signals);
  ::pthread_sigmask(SIG_BLOCK, &wanted, &before_);
  fd_ = Descriptor(::signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK));
  if (fd_) return;
  const int error = errno;
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  throw std::system_error(error, std::generic_category(), "listening for signals");
}

SignalHandle::~SignalHandle() {
  // One that has come by now is answered already: what it was wanted for is over.
  while (take()) {
  }
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

std::optional<int> SignalHandle::take() noexcept {
  signalfd_siginfo info{};
  if (::read(fd_.get(), &info, sizeof info) != sizeof info) return std::nullopt;
  return static_cast<int>(info.ssi_signo);
}

}  // namespace forgeyard::console
