#pragma once

#include <string>
#include <system_error>

namespace forgeyard::detail {

// Copies a regular file over another one or to a new name, with its permissions and write time. The
// destination holds the old contents or the new ones, never a part; where it is a symbolic link, what that
// points to is replaced. Host paths. Fails for a file onto itself and for a destination that is read-only.
std::error_code copyFile(const std::string& from, const std::string& to);

}  // namespace forgeyard::detail
