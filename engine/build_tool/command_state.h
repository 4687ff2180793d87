#pragma once

#include "typelib/host.h"

namespace forgeyard {

// Sets the state of a command where it differs: 1 if it did. Throws StatusError.
inline std::int32_t setEnabled(IHostCommand& command, bool wanted) {
  std::int32_t now = 0;
  check(command.get_Enabled(&now));
  if ((now != 0) == wanted) return 0;
  check(command.put_Enabled(wanted ? 1 : 0));
  return 1;
}

}  // namespace forgeyard
