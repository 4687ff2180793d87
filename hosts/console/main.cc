#include <signal.h>

#include "hosts/console/cli.h"

int main(int argc, char** argv) {
  // A reader of our output that goes away is an error of the write, not the end of the program: a build stops
  // in order and stores what it learnt.
  ::signal(SIGPIPE, SIG_IGN);
  return forgeyard::console::runCommandLine(argc, argv);
}
