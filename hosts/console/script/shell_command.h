#pragma once

#include <sys/types.h>

namespace forgeyard::console {

// A command that a shell runs for a script, with this process's standard streams. One thread.
class ShellCommand {
 public:
  // Starts it; errno says why where it can't be started.
  explicit ShellCommand(const char* command);
  ShellCommand(const ShellCommand&) = delete;
  ShellCommand& operator=(const ShellCommand&) = delete;

  explicit operator bool() const { return pid_ > 0; }
  // Waits until the shell has ended, or a signal has come: false then.
  bool waitInterrupted() const;
  // Ends the shell and all that it has started, by force, and waits for the shell.
  void killAll() const;
  // As from waitpid(), after the end.
  int status() const { return status_; }

 private:
  pid_t pid_ = -1;
  mutable int status_ = 0;
};

}  // namespace forgeyard::console
