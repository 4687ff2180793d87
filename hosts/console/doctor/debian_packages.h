#pragma once

#include <string>
#include <string_view>

namespace forgeyard::console {

// The Debian package that brings a GNU tool of that name, "mipsel-linux-gnu-gcc" for example; empty if none
// is known.
std::string debianPackageOf(std::string_view program);

}  // namespace forgeyard::console
