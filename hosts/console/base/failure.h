#pragma once

#include <stdexcept>
#include <string>

#include "platform/com/status.h"

namespace forgeyard::console {

// What the program ends with; scripts rely on these.
enum class ExitCode : int {
  Success = 0,
  BuildErrors = 1,
  Failure = 2,  // wrong usage, or a file that can't be read or written
  Stopped = 130,
  OutputClosed = 141,  // nobody reads standard output any more
};

// What ends a command with ExitCode::Failure: a whole message for the user, without the program's name.
// Nothing of the command's change has been stored.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The words for a status that an operation of the module gave; the number where there are none.
std::string describe(HRESULT status);

// Throws a Failure for a failed status: "WHAT: why".
void require(HRESULT status, const std::string& what);

}  // namespace forgeyard::console
