#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "tests/e2e/running_program.h"

namespace forgeyard::console {

// A program on a terminal of its own, which is its standard input, output and error. For one thread.
class TerminalProgram {
 public:
  explicit TerminalProgram(const e2e::Start& start, unsigned short columns = 80);
  TerminalProgram(const TerminalProgram&) = delete;
  TerminalProgram& operator=(const TerminalProgram&) = delete;
  ~TerminalProgram();

  // Reads until the text stands on the screen; false if the program ends or a minute passes before.
  bool waitFor(std::string_view text);
  void type(std::string_view keys) const;
  // Reads to the end and waits: the exit code, 128 + n after signal n.
  int finish();
  void resize(unsigned short columns) const;
  // All that was written so far, as it came.
  const std::string& written() const { return text_; }
  // What the user sees of that, line ends as LF: lines that were written over or erased are gone, and so are
  // colours. As on a terminal of endless width.
  std::string shown() const;

 private:
  bool readMore();

  pid_t id_ = -1;
  int terminal_ = -1;
  std::string text_;
};

}  // namespace forgeyard::console
