#include "hosts/console/build/tool_processes.h"

#include <signal.h>
#include <sys/types.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace forgeyard::console {

namespace {

namespace fs = std::filesystem;

// Of all threads of the process: a thread other than the first may have started one.
std::vector<pid_t> childrenOf(pid_t process) {
  std::vector<pid_t> children;
  std::error_code error;
  for (const auto& thread : fs::directory_iterator("/proc/" + std::to_string(process) + "/task", error)) {
    std::ifstream file(thread.path() / "children");
    for (pid_t child = 0; file >> child;) children.push_back(child);
  }
  return children;
}

}  // namespace

// The parent is stopped first, so that it starts nothing more meanwhile.
void killWithChildren(pid_t process) {
  ::kill(process, SIGSTOP);
  for (const pid_t child : childrenOf(process)) killWithChildren(child);
  ::kill(process, SIGKILL);
}

void killTools() {
  for (const pid_t spawner : childrenOf(::getpid())) {
    for (const pid_t tool : childrenOf(spawner)) {
      ::kill(-tool, SIGKILL);
      ::kill(tool, SIGKILL);
    }
  }
}

}  // namespace forgeyard::console
