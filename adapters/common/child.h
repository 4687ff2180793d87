#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/common/diagnostics.h"

namespace forgeyard {

// How a tool that an adapter runs has ended.
struct ChildResult {
  int exitCode = 0;     // the tool's own; 128 + n for signal n; 126 or 127 if it could not be started
  std::string problem;  // why it could not be started, or what signal ended it; empty otherwise

  bool succeeded() const noexcept { return exitCode == 0; }
};

struct ChildOptions {
  std::vector<std::string>
      command;                 // the program, looked for along PATH if it has no slash, and its arguments
  std::string standardOutput;  // host path of the file that takes it; empty: ours
  // Gets every line of standard error, without its line end, instead of our own.
  std::function<void(std::string_view)> errorLine;
};

// Runs it to its end. Standard input is ours.
ChildResult runChild(const ChildOptions& options);

// Becomes the program. Comes back only to say why it could not.
ChildResult becomeProgram(const std::vector<std::string>& command);

// While one of these lives, SIGTERM, SIGINT and SIGHUP don't end this process: they go to the running child,
// and the adapter clears up and then ends by itself. One at a time, on the only thread.
class StopSignals {
 public:
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // The signal that has come; 0 if none has.
  static int received() noexcept;
};

}  // namespace forgeyard
