#pragma once

#include "hosts/console/services/line_writer.h"

namespace forgeyard::console {

// The process's standard output, of which there is but one: all that the program has to say there goes
// through this writer, so that it stays in order. Main thread only.
LineWriter& standardOutput();

// From here on everything is said on standard output, as JSON lines (services/json_lines.h): lines, and what
// would have gone to standard error too, but for questions.
void speakJson();

}  // namespace forgeyard::console
