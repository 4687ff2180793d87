#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/common/child.h"
#include "adapters/common/diagnostics.h"

namespace forgeyard {

// The tools that an adapter runs one after the other for one command, up to the first that fails. If one
// does, or a signal says stop, the outputs go: half an output would count as built.
class ToolSteps {
 public:
  explicit ToolSteps(const Diagnostics& diagnostics) : diagnostics_(diagnostics) {}
  ~ToolSteps();
  ToolSteps(const ToolSteps&) = delete;
  ToolSteps& operator=(const ToolSteps&) = delete;

  // To be removed unless all goes well; empty names are no output.
  void output(const std::string& file);

  // False if the tool failed, or one before it did and it was not started.
  bool run(const ChildOptions& options);
  bool run(std::vector<std::string> command) { return run(ChildOptions{std::move(command), {}, {}}); }
  // Ends the steps with a message of the adapter's own.
  bool fail(std::string_view message, int exitCode);

  bool good() const noexcept { return exitCode_ == 0; }
  int exitCode() const noexcept { return exitCode_; }

 private:
  const Diagnostics& diagnostics_;
  StopSignals signals_;
  std::vector<std::string> outputs_;
  int exitCode_ = 0;
};

}  // namespace forgeyard
