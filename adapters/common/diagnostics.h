#pragma once

#include <string>
#include <string_view>

namespace forgeyard {

// Exit codes of the adapters beside those of the tools they run.
enum AdapterExit : int {
  ADAPTER_FAILED = 1,  // something of its own went wrong: a file it can't write
  ADAPTER_USAGE = 2,   // it was called wrongly
  ADAPTER_CANNOT_EXECUTE = 126,
  ADAPTER_NOT_FOUND = 127,
  ADAPTER_SIGNAL_BASE = 128,  // plus the signal's number
};

// What an adapter itself has to say goes through here, so that every line tells who speaks.
class Diagnostics {
 public:
  explicit Diagnostics(std::string_view program) : program_(program) {}

  std::string_view program() const noexcept { return program_; }

  // PROGRAM: TEXT
  void error(std::string_view text) const;
  // A line as it stands.
  static void line(std::string_view text);

 private:
  std::string program_;
};

// Answers `--help` and `--version` as the only argument; the exit code, or -1 if it is neither.
int answerHelp(const Diagnostics& diagnostics, int count, char** arguments, std::string_view help);

// The system's words for an error number.
std::string errorWords(int error);

}  // namespace forgeyard
