#pragma once

#include <string_view>

#include "hosts/console/usage/shell_line.h"

namespace forgeyard::console {

// What that shell reads to complete the command lines of this program. All of them ask "forgeyard complete".
std::string_view completionScript(Shell shell);

}  // namespace forgeyard::console
