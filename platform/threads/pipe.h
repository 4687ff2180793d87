#pragma once

#include <cstddef>
#include <span>

#include "platform/files/descriptor.h"
#include "platform/threads/event.h"

namespace forgeyard {

// Both ends of a new pipe, closed on exec. Throws std::system_error when the process is out of descriptors.
struct Pipe {
  Pipe();
  Descriptor readEnd;
  Descriptor writeEnd;
};

enum class ReadEnd { Data, EndOfFile, Cancelled, Failed };

struct ReadResult {
  ReadEnd end = ReadEnd::Failed;
  std::size_t bytes = 0;  // Data: at least 1
  int error = 0;          // Failed: errno
};

// Reads what is there, at most buffer.size() bytes; blocks until there is something, the pipe ends or
// `cancel` is set. Cancel wins over data. This is how a reading thread is ended from outside.
ReadResult readOrCancel(const Descriptor& pipe, const Event& cancel, std::span<char> buffer);

}  // namespace forgeyard
