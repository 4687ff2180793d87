#pragma once

#include <string_view>

#include "hosts/console/failure.h"
#include "hosts/console/services/line_writer.h"

namespace forgeyard::console {

enum class LineEnd { Closed, Open };

// One message to the user on standard error, behind the program's name; further lines of it are indented.
void complain(std::string_view message, LineEnd end = LineEnd::Closed);

// Sends off what the writer still holds. The exit code, or another one if standard output could not take all
// of it.
ExitCode finishOutput(LineWriter& output, ExitCode code);

}  // namespace forgeyard::console
