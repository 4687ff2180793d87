#include "adapters/common/diagnostics.h"

#include <string.h>
#include <unistd.h>

#include <cstdio>

#include "adapters/common/whole_file.h"

namespace forgeyard {

void Diagnostics::error(std::string_view text) const {
  line(program_ + ": " + std::string(text));
}

void Diagnostics::line(std::string_view text) {
  // One write for the whole line, or lines of two processes mix.
  static_cast<void>(writeAll(STDERR_FILENO, std::string(text) + "\n"));
}

int answerHelp(const Diagnostics& diagnostics, int count, char** arguments, std::string_view help) {
  const std::string_view only = count == 2 ? arguments[1] : "";
  if (only != "--help" && only != "--version") return -1;
  std::string text(help);
  if (only == "--version") text = std::string(diagnostics.program()) + " " FORGEYARD_VERSION "\n";
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0 ? 0 : 1;
}

std::string errorWords(int error) {
  const char* const text = ::strerrordesc_np(error);
  return text ? text : "error " + std::to_string(error);
}

}  // namespace forgeyard
