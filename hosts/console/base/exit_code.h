#pragma once

namespace forgeyard::console {

// What the program ends with; scripts rely on these.
enum class ExitCode : int {
  Success = 0,
  BuildErrors = 1,
  Failure = 2,  // wrong usage, or a file that can't be read or written
  Stopped = 130,
  OutputClosed = 141,  // nobody reads standard output any more
};

}  // namespace forgeyard::console
