#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include "hosts/console/cli.h"

namespace {

// Where the caller has closed one of the first three, the next file that is opened would get its number, and
// our lines. Standard output can't be written then, as it should be.
void holdStandardDescriptors() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
    if (::fcntl(fd, F_GETFD) < 0)
      static_cast<void>(::open("/dev/null", fd == STDERR_FILENO ? O_WRONLY : O_RDONLY));
  }
}

}  // namespace

int main(int argc, char** argv) {
  holdStandardDescriptors();
  // A reader of our output that goes away is an error of the write, not the end of the program: a build stops
  // in order and stores what it learnt.
  ::signal(SIGPIPE, SIG_IGN);
  return forgeyard::console::runCommandLine(argc, argv);
}
