#include "adapters/common/child.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <stdexcept>

#include "adapters/common/fitted_command.h"

namespace forgeyard {
namespace {

constexpr std::array<int, 3> kStopping = {SIGTERM, SIGINT, SIGHUP};

std::atomic<pid_t> runningChild{0};
std::atomic<int> receivedSignal{0};

void passOn(int signal) {
  const int error = errno;
  receivedSignal = signal;
  const pid_t child = runningChild;
  if (child > 0) ::kill(child, signal);
  errno = error;
}

sigset_t stoppingSet() {
  sigset_t set;
  ::sigemptyset(&set);
  for (const int signal : kStopping) ::sigaddset(&set, signal);
  return set;
}

std::vector<char*> argumentList(const std::vector<std::string>& command) {
  std::vector<char*> list;
  list.reserve(command.size() + 1);
  for (const std::string& word : command) list.push_back(const_cast<char*>(word.c_str()));
  list.push_back(nullptr);
  return list;
}

ChildResult startFailure(const std::string& program, int error) {
  const bool missing = error == ENOENT;
  std::string why = errorWords(error);
  if (missing && program.find('/') == program.npos) why = "not found on PATH";
  return {missing ? ADAPTER_NOT_FOUND : ADAPTER_CANNOT_EXECUTE, "cannot start \"" + program + "\": " + why};
}

// Two file actions and two attributes, freed in any case.
class SpawnSettings {
 public:
  SpawnSettings() {
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawnattr_init(&attributes_);
  }
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&actions_);
    ::posix_spawnattr_destroy(&attributes_);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  void outputTo(const std::string& file) {
    ::posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, file.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                       0666);
  }
  void errorsTo(int fd) { ::posix_spawn_file_actions_adddup2(&actions_, fd, STDERR_FILENO); }
  void signalsOf(const sigset_t& mask) {
    const sigset_t defaults = stoppingSet();
    ::posix_spawnattr_setsigdefault(&attributes_, &defaults);
    ::posix_spawnattr_setsigmask(&attributes_, &mask);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  int spawn(pid_t& pid, char* const* list) {
    return ::posix_spawnp(&pid, list[0], &actions_, &attributes_, list, environ);
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

// A pipe whose ends no child inherits but as its standard error.
class ErrorPipe {
 public:
  ErrorPipe() {
    if (::pipe2(ends_.data(), O_CLOEXEC) != 0) ends_ = {-1, -1};
  }
  ~ErrorPipe() {
    closeEnd(0);
    closeEnd(1);
  }
  ErrorPipe(const ErrorPipe&) = delete;
  ErrorPipe& operator=(const ErrorPipe&) = delete;

  bool open() const noexcept { return ends_[0] >= 0; }
  int writeEnd() const noexcept { return ends_[1]; }

  void readLines(const std::function<void(std::string_view)>& take) {
    closeEnd(1);
    std::string text;
    char bytes[4096];
    for (;;) {
      const ssize_t size = ::read(ends_[0], bytes, sizeof bytes);
      if (size < 0 && errno == EINTR) continue;
      if (size <= 0) break;
      text.append(bytes, static_cast<std::size_t>(size));
      for (std::size_t end; (end = text.find('\n')) != text.npos; text.erase(0, end + 1)) {
        take(std::string_view(text).substr(0, end));
      }
    }
    if (!text.empty()) take(text);
  }

 private:
  void closeEnd(std::size_t end) {
    if (ends_[end] >= 0) ::close(ends_[end]);
    ends_[end] = -1;
  }
  std::array<int, 2> ends_{-1, -1};
};

ChildResult resultOf(const std::string& program, int status) {
  if (!WIFSIGNALED(status)) return {WEXITSTATUS(status), {}};
  const int signal = WTERMSIG(status);
  const char* const name = ::sigdescr_np(signal);
  return {ADAPTER_SIGNAL_BASE + signal, '"' + program + "\" was killed by signal " + std::to_string(signal) +
                                            " (" + (name ? name : "unknown") + ")"};
}

ChildResult runFitted(const ChildOptions& options, const std::vector<std::string>& words) {
  const std::string& program = words.front();
  ErrorPipe errors;
  SpawnSettings settings;
  if (!options.standardOutput.empty()) settings.outputTo(options.standardOutput);
  if (options.errorLine && errors.open()) settings.errorsTo(errors.writeEnd());

  const sigset_t stopping = stoppingSet();
  sigset_t before;
  ::sigprocmask(SIG_BLOCK, &stopping, &before);  // or a signal between start and note would pass the child by
  settings.signalsOf(before);
  pid_t pid = 0;
  const int error = settings.spawn(pid, argumentList(words).data());
  if (error == 0) runningChild = pid;
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
  if (error != 0) return startFailure(program, error);

  if (options.errorLine && errors.open()) errors.readLines(options.errorLine);
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  runningChild = 0;
  return resultOf(program, status);
}

// A command that is too long for the system is like a program that can't be executed.
template <class Run>
ChildResult withFitted(const std::vector<std::string>& command, Run&& run) {
  try {
    return run(FittedCommand(command));
  } catch (const std::runtime_error& failure) {
    return {ADAPTER_CANNOT_EXECUTE, failure.what()};
  }
}

}  // namespace

ChildResult runChild(const ChildOptions& options) {
  return withFitted(options.command,
                    [&](const FittedCommand& command) { return runFitted(options, command.words()); });
}

ChildResult becomeProgram(const std::vector<std::string>& command) {
  return withFitted(command, [&](const FittedCommand& fitted) {
    if (fitted.responseFile()) fitted.responseFile()->keepOnExec();
    ::execvp(command.front().c_str(), argumentList(fitted.words()).data());
    return startFailure(command.front(), errno);
  });
}

StopSignals::StopSignals() {
  receivedSignal = 0;
  struct sigaction action {};
  action.sa_handler = passOn;
  action.sa_mask = stoppingSet();
  for (const int signal : kStopping) ::sigaction(signal, &action, nullptr);
}

StopSignals::~StopSignals() {
  for (const int signal : kStopping) ::signal(signal, SIG_DFL);
}

int StopSignals::received() noexcept {
  return receivedSignal;
}

}  // namespace forgeyard
