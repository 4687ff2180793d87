#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "tests/e2e/running_program.h"

namespace forgeyard::console {

// A program on a terminal of its own, which is its standard input, output and error. For one thread.
class TerminalProgram {
 public:
  explicit TerminalProgram(const e2e::Start& start);
  TerminalProgram(const TerminalProgram&) = delete;
  TerminalProgram& operator=(const TerminalProgram&) = delete;
  ~TerminalProgram();

  // Reads until the text has been shown; false if the program ends or a minute passes before.
  bool waitFor(std::string_view text);
  void type(std::string_view keys) const;
  // Reads to the end and waits: the exit code, 128 + n after signal n.
  int finish();
  // All that was shown so far, line ends as LF.
  std::string shown() const;

 private:
  bool readMore();

  pid_t id_ = -1;
  int terminal_ = -1;
  std::string text_;
};

}  // namespace forgeyard::console
