#pragma once

#include <pthread.h>
#include <signal.h>

namespace forgeyard {

// While it lives, threads that this one starts begin with signals blocked, so that whatever is sent goes to
// the host's own threads; those of their own faults excepted.
class BlockedSignals {
 public:
  BlockedSignals() noexcept {
    sigset_t blocked;
    sigfillset(&blocked);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS})
      sigdelset(&blocked, fault);
    pthread_sigmask(SIG_SETMASK, &blocked, &previous_);
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t previous_;
};

}  // namespace forgeyard
