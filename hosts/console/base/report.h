#pragma once

#include <string_view>

namespace forgeyard::console {

enum class LineEnd { Closed, Open };

// One message to the user on standard error, behind the program's name; further lines of it are indented.
void complain(std::string_view message, LineEnd end = LineEnd::Closed);

}  // namespace forgeyard::console
