#include "platform/threads/process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <thread>

#include "platform/files/os_error.h"

namespace forgeyard {
namespace {

constexpr int unknownExit = 255;

int exitCodeOf(const siginfo_t& info) {
  return info.si_code == CLD_EXITED ? info.si_status : 128 + info.si_status;
}

struct Reaped {
  bool ended = false;
  int exitCode = unknownExit;
};

// Collects a child that has ended, without waiting. One that the kernel has collected itself counts as ended.
Reaped reap(pid_t pid) noexcept {
  siginfo_t info{};
  const int result =
      detail::retry([&] { return ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG); });
  if (result != 0) return {true, unknownExit};
  if (info.si_pid == 0) return {};
  return {true, exitCodeOf(info)};
}

// Children whose object went before they ended; collected when the next child is started.
class Abandoned {
 public:
  void add(pid_t pid) {
    const std::lock_guard<std::mutex> lock(mutex_);
    children_.push_back(pid);
  }
  void sweep() {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::erase_if(children_, [](pid_t pid) { return reap(pid).ended; });
  }

 private:
  std::mutex mutex_;
  std::vector<pid_t> children_;
};

Abandoned& abandoned() {
  static Abandoned& instance = *new Abandoned;
  return instance;
}

class SpawnActions {
 public:
  SpawnActions() {
    if (::posix_spawn_file_actions_init(&actions_) != 0) throw std::bad_alloc();
  }
  ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;

  // `source` may be one of the three numbers itself, and must not be overwritten before it is copied: so it
  // is copied out of their way first.
  void output(int source, int target) {
    if (source < 0) {
      check(::posix_spawn_file_actions_addopen(&actions_, target, "/dev/null", O_WRONLY, 0));
      return;
    }
    if (source <= STDERR_FILENO) {
      moved_[static_cast<std::size_t>(target)].reset(::fcntl(source, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
      source = moved_[static_cast<std::size_t>(target)].get();
      if (source < 0) detail::throwErrno("passing an output on");
    }
    check(::posix_spawn_file_actions_adddup2(&actions_, source, target));
  }
  void input(const std::string& text) {
    if (text.empty()) {
      check(::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
    } else {
      input_ = memoryFile(text);
      check(::posix_spawn_file_actions_adddup2(&actions_, input_.get(), STDIN_FILENO));
    }
  }
  void closeOthers() { check(::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1)); }
  void changeDirectory(const std::string& directory) {
    check(::posix_spawn_file_actions_addchdir_np(&actions_, directory.c_str()));
  }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  static void check(int error) {
    if (error != 0) detail::throwErrno("preparing a process", error);
  }

  // At its start. Out of the way of the three.
  static Descriptor memoryFile(std::string_view text) {
    const Descriptor created(::memfd_create("input", MFD_CLOEXEC));
    Descriptor file(::fcntl(created.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    while (file && !text.empty()) {
      const ssize_t written = detail::retry([&] { return ::write(file.get(), text.data(), text.size()); });
      if (written < 0) break;
      text.remove_prefix(static_cast<std::size_t>(written));
    }
    if (!file || !text.empty() || ::lseek(file.get(), 0, SEEK_SET) != 0)
      detail::throwErrno("passing an input on");
    return file;
  }

  posix_spawn_file_actions_t actions_;
  Descriptor input_;
  std::array<Descriptor, 3> moved_;
};

class SpawnAttributes {
 public:
  explicit SpawnAttributes(bool ownGroup) {
    if (::posix_spawnattr_init(&attributes_) != 0) throw std::bad_alloc();
    sigset_t signals;
    sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes_, &signals);
    // A host may ignore these for itself; a child that inherits that loses exit codes or writes into the
    // void.
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGCHLD);
    ::posix_spawnattr_setsigdefault(&attributes_, &signals);
    int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    if (ownGroup) flags |= POSIX_SPAWN_SETPGROUP;
    ::posix_spawnattr_setflags(&attributes_, static_cast<short>(flags));
  }
  ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

// The null-ended array that exec takes; borrows the texts, which must stay where they are.
std::vector<char*> pointers(const std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (const std::string& text : texts) result.push_back(const_cast<char*>(text.c_str()));
  result.push_back(nullptr);
  return result;
}

// The errno, or 0.
int spawn(const ProcessOptions& options, pid_t& pid) {
  SpawnActions actions;
  actions.input(options.input);
  actions.output(options.standardOutput, STDOUT_FILENO);
  actions.output(options.standardError, STDERR_FILENO);
  actions.closeOthers();
  if (!options.workingDirectory.empty()) actions.changeDirectory(options.workingDirectory);
  const SpawnAttributes attributes(options.ownGroup);
  std::vector<char*> arguments = pointers(options.arguments);
  if (options.arguments.empty())
    arguments.insert(arguments.begin(), const_cast<char*>(options.program.c_str()));
  std::vector<char*> environment;
  if (options.environment) environment = pointers(*options.environment);
  return ::posix_spawnp(&pid, options.program.c_str(), actions.get(), attributes.get(), arguments.data(),
                        options.environment ? environment.data() : environ);
}

using Step = ProcessStartError::Step;

bool isUsableDirectory(const std::string& directory) {
  struct stat info {};
  return ::stat(directory.c_str(), &info) == 0 && S_ISDIR(info.st_mode) &&
         ::faccessat(AT_FDCWD, directory.c_str(), X_OK, AT_EACCESS) == 0;
}

// The one errno of a failed start doesn't say which step it belongs to.
ProcessStartError explain(const ProcessOptions& options, int error) {
  const std::string why = std::strerror(error);
  if (error == EAGAIN || error == ENOMEM || error == EMFILE || error == ENFILE) {
    return {Step::Resources, error, "cannot start a process for " + options.program + ": " + why};
  }
  if (!options.workingDirectory.empty() && !isUsableDirectory(options.workingDirectory)) {
    return {Step::WorkingDirectory, error,
            "cannot start " + options.program + " in directory " + options.workingDirectory + ": " + why};
  }
  return {Step::Program, error, "cannot start " + options.program + ": " + why};
}

Descriptor openPidfd([[maybe_unused]] pid_t pid) {
#ifdef SYS_pidfd_open
  return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
#else
  errno = ENOSYS;
  return Descriptor();
#endif
}

}  // namespace

// Where the kernel offers no descriptor for a process, a thread waits for it and sets an event.
struct Process::Watch {
  explicit Watch(pid_t child) : pid(child) {}

  void run() {
    siginfo_t info{};
    // First only look: the number must stay the child's own until kill() knows.
    detail::retry([&] { return ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT); });
    const std::lock_guard<std::mutex> lock(mutex);
    exitCode = reap(pid).exitCode;
    ended.set();
  }

  const pid_t pid;
  Event ended;
  std::mutex mutex;
  std::optional<int> exitCode;
};

Process::Process(pid_t pid, Descriptor pidfd, std::shared_ptr<Watch> watch) noexcept
    : pid_(pid), pidfd_(std::move(pidfd)), watch_(std::move(watch)) {}

Process::~Process() {
  if (!watch_ && !exitCode()) abandoned().add(pid_);
}

std::unique_ptr<Process> Process::start(const ProcessOptions& options, ProcessStartError& error) {
  error = {};
  abandoned().sweep();
  pid_t pid = 0;
  int failure = 0;
  try {
    failure = spawn(options, pid);
  } catch (const std::system_error& thrown) {
    failure = thrown.code().value();
  }
  if (failure != 0) {
    error = explain(options, failure);
    return nullptr;
  }
  return attach(pid, options, error);
}

// A child that can't be waited for is no use: it is ended, and its start counts as failed.
std::unique_ptr<Process> Process::attach(pid_t pid, const ProcessOptions& options, ProcessStartError& error) {
  try {
    Descriptor pidfd;
    if (!options.watchByThread) pidfd = openPidfd(pid);
    if (pidfd) return std::unique_ptr<Process>(new Process(pid, std::move(pidfd), nullptr));
    auto watch = std::make_shared<Watch>(pid);
    std::unique_ptr<Process> process(new Process(pid, Descriptor(), watch));
    std::thread([watch] { watch->run(); }).detach();
    return process;
  } catch (const std::exception& thrown) {
    ::kill(pid, SIGKILL);
    abandoned().add(pid);
    error = {Step::Resources, EAGAIN, "cannot wait for " + options.program + ": " + thrown.what()};
    return nullptr;
  }
}

int Process::descriptor() const noexcept {
  return watch_ ? watch_->ended.descriptor() : pidfd_.get();
}

std::optional<int> Process::exitCode() {
  if (exitCode_) return exitCode_;
  if (watch_) {
    const std::lock_guard<std::mutex> lock(watch_->mutex);
    exitCode_ = watch_->exitCode;
  } else if (isSignalled()) {
    exitCode_ = reap(pid_).exitCode;
  }
  return exitCode_;
}

bool Process::kill(int signal) noexcept {
  if (exitCode_) return false;
  if (!watch_) return ::syscall(SYS_pidfd_send_signal, pidfd_.get(), signal, nullptr, 0) == 0;
  const std::lock_guard<std::mutex> lock(watch_->mutex);
  return !watch_->exitCode && ::kill(pid_, signal) == 0;
}

}  // namespace forgeyard
