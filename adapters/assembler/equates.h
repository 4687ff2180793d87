#pragma once

#include <string>
#include <string_view>

namespace forgeyard {

// The names, a line each, of the equates in what `nm --format=posix` says of an object: absolute symbols that
// no other file sees. Global ones belong to the program as much as labels do.
std::string localEquates(std::string_view symbols);

}  // namespace forgeyard
