#include "hosts/console/report.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace forgeyard::console {

void complain(std::string_view message, LineEnd end) {
  while (message.ends_with('\n')) message.remove_suffix(1);
  std::string text = "forgeyard: ";
  for (const char c : message) {
    text += c;
    if (c == '\n') text += "  ";
  }
  if (end == LineEnd::Closed) text += '\n';
  // In one piece, so that messages of several processes don't mix.
  std::fwrite(text.data(), 1, text.size(), stderr);
}

ExitCode finishOutput(LineWriter& output, ExitCode code) {
  output.flush();
  switch (output.state()) {
    case LineWriter::State::Closed:
      return ExitCode::OutputClosed;
    case LineWriter::State::Failed:
      complain(std::string("Standard output can't be written: ") + std::strerror(output.error()) + ".");
      return ExitCode::Failure;
    default:
      return code;
  }
}

}  // namespace forgeyard::console
