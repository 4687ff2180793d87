#pragma once

#include <memory>
#include <string_view>

#include "hosts/console/base/exit_code.h"
#include "hosts/console/build/build_view.h"
#include "hosts/console/services/output_window.h"
#include "hosts/console/session/session.h"
#include "workbench/diagnostics/tool_paths.h"
#include "workbench/project/open_project.h"
#include "workbench/project/project_paths.h"

namespace forgeyard::console {

// Shows the build run of a command of the program, in the form that the options ask for, from its
// construction on: takes the lines of the output window and hears of the build's progress. Main thread only.
class BuildDisplay final : private LineSink {
 public:
  // `command` is the module's, as "ProjectBuild". Borrows the session and the project.
  BuildDisplay(Session& session, workbench::OpenProject& project, std::u16string_view command);
  BuildDisplay(const BuildDisplay&) = delete;
  BuildDisplay& operator=(const BuildDisplay&) = delete;
  ~BuildDisplay();

  // Behind the run's last line: sums up.
  void end(ExitCode result);

 private:
  class Progress;
  using Clock = std::chrono::steady_clock;

  void write(const BString& tab, const BString& text, LineOrigin origin) override;
  std::string fileOf(const ToolRun& run) const;
  void toolStarted(const ToolRun& run);
  void toolEnded(const ToolRun& run, std::optional<std::int32_t> exitCode);

  Session& session_;
  workbench::ProjectPaths paths_;
  workbench::ToolPaths toolPaths_;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point toolBegin_;
  bool toolRuns_ = false;
  std::int32_t tools_ = 0;
  std::string component_;  // whose tool runs
  workbench::Findings findings_;
  std::unique_ptr<BuildView> view_;
};

}  // namespace forgeyard::console
