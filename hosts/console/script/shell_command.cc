#include "hosts/console/script/shell_command.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "hosts/console/build/tool_processes.h"

namespace forgeyard::console {

ShellCommand::ShellCommand(const char* command) : pid_(::fork()) {
  if (pid_ != 0) return;
  // Handlers are reset by the exec; SIGPIPE, which this program ignores, is not.
  ::signal(SIGPIPE, SIG_DFL);
  ::execl("/bin/sh", "sh", "-c", command, static_cast<char*>(nullptr));
  ::_exit(127);
}

bool ShellCommand::waitInterrupted() const {
  return ::waitpid(pid_, &status_, 0) == pid_ || errno != EINTR;
}

void ShellCommand::killAll() const {
  killWithChildren(pid_);
  while (::waitpid(pid_, &status_, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace forgeyard::console
