#pragma once

#include <cstdint>

#include "hosts/console/services/line_writer.h"

namespace forgeyard::console {

// The process's standard output, of which there is but one: all that the program has to say there goes
// through this writer, so that it stays in order. Main thread only.
LineWriter& standardOutput();

// How the program speaks, from here on. As text, messages go to standard error, past the footer of standard
// output. As JSON lines (services/json_lines.h) all but questions goes to standard output.
enum class Speech : std::uint8_t { Text, Json };
void speakIn(Speech speech);

}  // namespace forgeyard::console
