#include "spawner/tool_run.h"

#include "spawner/descendants.h"
#include "spawner/kernel.h"
#include "spawner/report.h"
#include "spawner/stop_event.h"

namespace forgeyard {
namespace {

constexpr dev_t NULL_DEVICE = 1 << 8 | 3;  // major and minor number of /dev/null
constexpr long GRACE_MS = 1000;            // between SIGTERM and SIGKILL
constexpr long CLEAR_MS = 1000;         // for what is killed to be gone; only the kernel can keep it longer
constexpr int PARENT_SIGNAL = SIGUSR1;  // sent by the kernel when the parent, or a thread of it, ends

// Also blocked: SIGPIPE, so that a line to nobody doesn't keep us from clearing up.
constexpr kernel::SignalMask WATCHED = kernel::signalMask(SIGCHLD, SIGTERM, SIGINT, SIGHUP, PARENT_SIGNAL);
constexpr kernel::SignalMask BLOCKED = WATCHED | kernel::signalMask(SIGPIPE);

// The first three must be open, or the next file that is opened becomes the tool's output.
void openStandardDescriptors() noexcept {
  struct stat input {};
  const bool isNull =
      kernel::stat(STDIN_FILENO, &input) == 0 && S_ISCHR(input.st_mode) && input.st_rdev == NULL_DEVICE;
  if (!isNull) {
    kernel::close(STDIN_FILENO);
    kernel::open("/dev/null", O_RDONLY);
  }
  for (int fd = STDOUT_FILENO; fd <= STDERR_FILENO; ++fd) {
    if (kernel::call(SYS_fcntl, fd, F_GETFD) < 0) kernel::open("/dev/null", O_WRONLY);
  }
}

// The last included.
void closeRange(int first, unsigned last) noexcept {
  if (kernel::call(SYS_close_range, first, last, 0) >= 0) return;
  // Kernels before 5.9.
  for (int fd = first; fd < 1024 && static_cast<unsigned>(fd) <= last; ++fd) kernel::close(fd);
}

void closeOthers(int kept) noexcept {
  constexpr int kFirst = STDERR_FILENO + 1;
  if (kept > kFirst) closeRange(kFirst, static_cast<unsigned>(kept) - 1);
  closeRange(kept >= kFirst ? kept + 1 : kFirst, ~0U);
}

struct Start {
  const ToolPlan& plan;
  pid_t spawner;
  long error = 0;
};

// In the new process, which shares our memory until it is the tool, on a stack that no sanitizer knows.
[[gnu::no_sanitize_address]] int becomeTool(void* argument) {
  Start& start = *static_cast<Start*>(argument);
  kernel::call(SYS_setpgid, 0, 0);
  kernel::call(SYS_prctl, PR_SET_PDEATHSIG, SIGKILL);
  // We may have been killed before the line above.
  if (kernel::parent() != start.spawner) kernel::exit(NOT_FOUND);
  kernel::block(0);
  start.error = -kernel::call(SYS_execve, start.plan.file, start.plan.arguments, start.plan.environment);
  kernel::exit(NOT_FOUND);
}

class ToolRun {
 public:
  explicit ToolRun(const ToolPlan& plan) noexcept : plan_(plan) {}
  int run() noexcept;

 private:
  enum class News { None, ToolEnded, Stop };

  void prepare() noexcept;
  bool start() noexcept;
  int startFailure() const noexcept;
  News wait(long milliseconds) noexcept;
  News readSignals() noexcept;
  bool toolEnded() const noexcept { return tool_ > 0 && reapOthers(tool_); }
  void terminate() noexcept;
  void clear() noexcept;
  int exitCode() const noexcept;

  const ToolPlan& plan_;
  pid_t parent_ = 0;
  pid_t tool_ = 0;
  int signals_ = -1;
  int stopEvent_ = -1;
  long startError_ = 0;
  int status_ = 0;
  bool stopped_ = false;
};

int ToolRun::run() noexcept {
  prepare();
  // Stopped already: whoever said so doesn't want a file touched.
  if (wait(0) == News::Stop || kernel::parent() != parent_) return SIGNAL_BASE + SIGTERM;
  if (!start()) return startFailure();
  News news;
  do {
    news = wait(-1);
  } while (news == News::None);
  if (news == News::Stop) terminate();
  clear();
  return exitCode();
}

void ToolRun::prepare() noexcept {
  closeOthers(plan_.keptDescriptor);
  openStandardDescriptors();
  // An ignored SIGCHLD would lose the exit code, an ignored SIGPIPE would be handed on to the tool.
  kernel::restoreDefault(SIGCHLD);
  kernel::restoreDefault(SIGPIPE);
  kernel::block(BLOCKED);
  signals_ =
      static_cast<int>(kernel::call(SYS_signalfd4, -1, &WATCHED, sizeof WATCHED, SFD_CLOEXEC | SFD_NONBLOCK));
  parent_ = kernel::parent();
  kernel::call(SYS_prctl, PR_SET_PDEATHSIG, PARENT_SIGNAL);
  // What the tool's children leave behind becomes our child, so that nothing gets away.
  kernel::call(SYS_prctl, PR_SET_CHILD_SUBREAPER, 1);
  stopEvent_ = openStopEvent(plan_.environment);
}

bool ToolRun::start() noexcept {
  alignas(16) static char stack[16384];
  Start start{plan_, static_cast<pid_t>(kernel::call(SYS_getpid))};
  tool_ = kernel::startSharing(becomeTool, &start, stack + sizeof stack);
  if (tool_ < 0) start.error = -tool_;
  startError_ = start.error;
  if (tool_ > 0 && startError_ != 0) kernel::wait(tool_, nullptr, 0);
  return startError_ == 0;
}

int ToolRun::startFailure() const noexcept {
  struct stat status {};
  const bool exists = kernel::stat(plan_.file, &status) == 0;
  const char* why = errorText(static_cast<int>(startError_));
  if (startError_ == ENOENT && exists) why = "the interpreter or loader that it names is missing";
  if (startError_ == EACCES && exists && S_ISDIR(status.st_mode)) why = "it is a directory";
  reportCannotStart(plan_.name, why);
  return exists || startError_ != ENOENT ? CANNOT_EXECUTE : NOT_FOUND;
}

// Without a limit for negative milliseconds. A tool that has ended comes before a stop: its result stands.
ToolRun::News ToolRun::wait(long milliseconds) noexcept {
  struct ::pollfd entries[] = {{signals_, POLLIN, 0}, {stopEvent_, POLLIN, 0}};
  if (kernel::poll(entries, stopEvent_ >= 0 ? 2 : 1, milliseconds) <= 0) return News::None;
  if (entries[0].revents) {
    if (toolEnded()) return News::ToolEnded;
    const News news = readSignals();
    // Or it has ended since, and what would have told us is just read.
    if (toolEnded()) return News::ToolEnded;
    if (news == News::Stop) return News::Stop;
  }
  return entries[1].revents & POLLIN ? News::Stop : News::None;
}

ToolRun::News ToolRun::readSignals() noexcept {
  struct ::signalfd_siginfo info {};
  News news = News::None;
  while (kernel::read(signals_, &info, sizeof info) == sizeof info) {
    const int signal = static_cast<int>(info.ssi_signo);
    // It may have been a thread only, and then we have another parent thread.
    if (signal == PARENT_SIGNAL && kernel::parent() == parent_) continue;
    if (signal != SIGCHLD) news = News::Stop;
  }
  return news;
}

// Asks all of them to end and gives them their time. The tool stays unreaped meanwhile, so that the number of
// its group can't become somebody else's.
void ToolRun::terminate() noexcept {
  stopped_ = true;
  stopEvent_ = -1;  // says nothing new any more
  kernel::kill(-tool_, SIGTERM);
  kernel::kill(-tool_, SIGCONT);
  const long end = kernel::milliseconds() + GRACE_MS;
  bool askedOthers = false;
  for (long left = GRACE_MS; left > 0; left = end - kernel::milliseconds()) {
    if (hasEnded(tool_)) {
      // Now those that had left the group are our children.
      if (!askedOthers) signalStrays(tool_, SIGTERM);
      askedOthers = true;
      if (!othersAlive(tool_)) return;
    }
    waitForChild(signals_, left);
  }
}

// Leaves nobody who could hold the output open.
void ToolRun::clear() noexcept {
  kernel::kill(-tool_, SIGKILL);
  const long end = kernel::milliseconds() + CLEAR_MS;
  while (!reapAll(tool_, status_)) {
    const long left = end - kernel::milliseconds();
    if (left <= 0) return;
    signalChildren(SIGKILL);
    waitForChild(signals_, left);
  }
}

int ToolRun::exitCode() const noexcept {
  if (WIFSIGNALED(status_)) {
    if (!stopped_) reportSignal(plan_.name, status_);
    return SIGNAL_BASE + WTERMSIG(status_);
  }
  const int code = WEXITSTATUS(status_);
  // A tool that takes a stop for success has not done its work.
  return stopped_ && code == 0 ? SIGNAL_BASE + SIGTERM : code;
}

}  // namespace

int runTool(const ToolPlan& plan) noexcept {
  return ToolRun(plan).run();
}

}  // namespace forgeyard
