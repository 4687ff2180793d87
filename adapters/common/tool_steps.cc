#include "adapters/common/tool_steps.h"

#include <unistd.h>

namespace forgeyard {

ToolSteps::~ToolSteps() {
  if (good()) return;
  for (const std::string& file : outputs_) ::unlink(file.c_str());
}

void ToolSteps::output(const std::string& file) {
  if (!file.empty()) outputs_.push_back(file);
}

bool ToolSteps::run(const ChildOptions& options) {
  if (!good()) return false;
  const ChildResult result = runChild(options);
  exitCode_ = result.exitCode;
  if (StopSignals::received() != 0) {
    exitCode_ = ADAPTER_SIGNAL_BASE + StopSignals::received();
  } else if (!result.problem.empty()) {
    diagnostics_.error(result.problem);
  }
  return good();
}

bool ToolSteps::fail(std::string_view message, int exitCode) {
  diagnostics_.error(message);
  exitCode_ = exitCode;
  return false;
}

}  // namespace forgeyard
