#pragma once

#include <memory>

#include "hosts/console/build/build_view.h"
#include "hosts/console/build/progress_line.h"
#include "hosts/console/services/line_writer.h"
#include "hosts/console/services/terminal.h"

namespace forgeyard::console {

class Session;

// A build run as text: the lines as they are, coloured and with a progress line below on a terminal that can
// do it, and errors and warnings once more at the end.
class TextView final : public BuildView {
 public:
  // Warnings beyond that are counted alone.
  static constexpr std::size_t kWarningsShown = 20;

  // Borrows the session.
  explicit TextView(Session& session);

  bool wantsCounts() const override { return progress_ != nullptr; }
  void line(const BString& tab, const BString& text, const workbench::Diagnostic* diagnostic) override;
  void componentStarted(const BString& component, std::int32_t inputs) override;
  void componentEnded(const BString& component, e_btr result) override;
  void toolStarted(const ToolRun& run, const std::string& file) override;
  void toolFailed(const workbench::Diagnostic& failure) override;
  void toolEnded(const ToolRun& run, std::optional<std::int32_t> exitCode,
                 std::chrono::milliseconds elapsed) override;
  void ended(const BuildOutcome& outcome) override;

 private:
  void showFinding(const workbench::Finding& finding);

  LineWriter& out_;
  Terminal terminal_;
  std::unique_ptr<ProgressLine> progress_;  // null where there is none
};

}  // namespace forgeyard::console
