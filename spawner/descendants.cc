#include "spawner/descendants.h"

#include "spawner/kernel.h"

namespace forgeyard {
namespace {

// The child among `which` that has ended and is not yet reaped; 0 if there is none.
pid_t ended(idtype_t type, pid_t which) noexcept {
  siginfo_t info;
  info.si_pid = 0;
  const long result =
      kernel::call(SYS_waitid, static_cast<int>(type), which, &info, WEXITED | WNOHANG | WNOWAIT, nullptr);
  return result == 0 ? info.si_pid : 0;
}

// Calls visit(pid) for the children of this thread, as many as one reading gives: who needs all of them comes
// back when these have ended.
template <class Visit>
void forEachChild(Visit&& visit) noexcept {
  const int list = kernel::open("/proc/thread-self/children", O_RDONLY | O_CLOEXEC);
  if (list < 0) return;
  char text[4096];
  const long size = kernel::read(list, text, sizeof text);
  kernel::close(list);
  pid_t pid = 0;
  for (long i = 0; i < size; ++i) {
    // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): the kernel has written it
    if (text[i] >= '0' && text[i] <= '9') {
      pid = pid * 10 + (text[i] - '0');
    } else if (pid != 0) {  // a number that is not ended by a blank may be cut
      visit(pid);
      pid = 0;
    }
  }
}

}  // namespace

bool hasEnded(pid_t child) noexcept {
  return ended(P_PID, child) == child;
}

bool reapOthers(pid_t tool) noexcept {
  // The tool is the oldest child and so the first that is found.
  for (;;) {
    const pid_t pid = ended(P_ALL, 0);
    if (pid == tool) return true;
    if (pid == 0) return false;
    kernel::wait(pid, nullptr, 0);
  }
}

bool reapAll(pid_t tool, int& toolStatus) noexcept {
  for (;;) {
    int status = 0;
    const pid_t pid = kernel::wait(-1, &status, WNOHANG);
    if (pid == 0) return false;
    if (pid == -EINTR) continue;
    if (pid < 0) return true;
    if (pid == tool) toolStatus = status;
  }
}

bool othersAlive(pid_t tool) noexcept {
  bool alive = false;
  forEachChild([&](pid_t pid) { alive = alive || (pid != tool && !hasEnded(pid)); });
  return alive;
}

void signalChildren(int signal) noexcept {
  forEachChild([signal](pid_t pid) { kernel::kill(pid, signal); });
}

void signalStrays(pid_t group, int signal) noexcept {
  forEachChild([group, signal](pid_t pid) {
    if (kernel::call(SYS_getpgid, pid) != group) kernel::kill(pid, signal);
  });
}

void waitForChild(int signals, long milliseconds) noexcept {
  struct ::pollfd entry {
    signals, POLLIN, 0
  };
  if (kernel::poll(&entry, 1, milliseconds) <= 0) return;
  struct ::signalfd_siginfo info;
  while (kernel::read(signals, &info, sizeof info) == sizeof info) {
  }
}

}  // namespace forgeyard
