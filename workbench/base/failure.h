#pragma once

#include <stdexcept>
#include <string>

#include "platform/com/status.h"

namespace forgeyard::workbench {

// Ends an operation of the workbench: a whole message for the user. Nothing of the operation's change has
// been stored.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The words for a status that an operation of the module gave; the number where there are none.
std::string describe(HRESULT status);

// Throws a Failure for a failed status: "WHAT: why".
void require(HRESULT status, const std::string& what);

}  // namespace forgeyard::workbench
