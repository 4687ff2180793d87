#pragma once

#include <sys/types.h>

#include "spawner/text_buffer.h"

namespace forgeyard {

// Exit codes of the spawner beside those of the tool.
enum ExitCode : int {
  WRONG_USAGE = 2,
  CANNOT_EXECUTE = 126,
  NOT_FOUND = 127,
  SIGNAL_BASE = 128,  // plus the signal's number
};

// The spawner's own lines, which come among those of the tool.
using Line = TextBuffer<8192>;

// Writes the line to standard error in one piece, with a line end.
void report(Line& line) noexcept;

// TideSpawn: cannot start "NAME": WHY
void reportCannotStart(const char* name, const char* why) noexcept;

// TideSpawn: "NAME" was killed by signal 11 (Segmentation fault)
void reportSignal(const char* name, int waitStatus) noexcept;

// The system's words for an error number.
const char* errorText(int error) noexcept;

}  // namespace forgeyard
