#pragma once

namespace forgeyard::console {

// The whole program: reads the command line and runs the command. The exit code.
int runCommandLine(int argc, char** argv);

}  // namespace forgeyard::console
