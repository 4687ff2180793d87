#pragma once

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/threads/event.h"
#include "platform/threads/waitable.h"

namespace forgeyard {

struct ProcessOptions {
  // Host path of the program, or a name without "/" that is looked up on the PATH.
  std::string program;
  // All arguments, the first of them (the program's own name) included; empty: the program alone.
  std::vector<std::string> arguments;
  std::string workingDirectory;                         // host path; empty: this process's own
  std::optional<std::vector<std::string>> environment;  // "NAME=value"; nothing: this process's own
  std::string input;                                    // what standard input reads; empty: /dev/null
  int standardOutput = -1;                              // borrowed; -1: /dev/null
  int standardError = -1;                               // borrowed; -1: /dev/null
  // In a process group of its own: an interrupt typed at the terminal then reaches this process alone.
  bool ownGroup = false;
  // Waits by a thread even where the kernel offers a descriptor for a process.
  bool watchByThread = false;
};

struct ProcessStartError {
  enum class Step { None, WorkingDirectory, Program, Resources };
  Step step = Step::None;
  int error = 0;        // errno
  std::string message;  // what, which and why
};

// A child process. Is signalled when the child has ended. Destroying the object neither ends the child nor
// waits for it; the child is reaped when it ends. The child inherits no descriptor beyond the three,
// blocks no signals and has the default action for SIGPIPE and SIGCHLD. Any thread may wait.
class Process : public Waitable {
 public:
  // Null if the child could not be started, and then `error` says why.
  static std::unique_ptr<Process> start(const ProcessOptions& options, ProcessStartError& error);
  ~Process() override;

  pid_t id() const noexcept { return pid_; }
  int descriptor() const noexcept override;

  // Empty while the child runs. The exit code (0 to 255), or 128 + the signal that ended the child. Where the
  // program that loaded us ignores SIGCHLD the kernel keeps no code: then it is 255.
  std::optional<int> exitCode();
  // Sends a signal; false if the child has ended.
  bool kill(int signal) noexcept;

 private:
  struct Watch;
  Process(pid_t pid, Descriptor pidfd, std::shared_ptr<Watch> watch) noexcept;
  static std::unique_ptr<Process> attach(pid_t pid, const ProcessOptions& options, ProcessStartError& error);

  pid_t pid_;
  Descriptor pidfd_;
  std::shared_ptr<Watch> watch_;  // where the kernel has no pidfd: a thread that waits
  std::optional<int> exitCode_;
};

}  // namespace forgeyard
