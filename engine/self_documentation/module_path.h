#pragma once

#include <string>

namespace forgeyard {

// The absolute host path of the binary that this code is in, the module or a test; empty if the loader
// doesn't tell.
const std::string& modulePath();

}  // namespace forgeyard
