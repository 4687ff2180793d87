#pragma once

#include "hosts/console/build/build_view.h"
#include "hosts/console/services/line_writer.h"

namespace forgeyard::console {

// A build run as JSON lines: docs/output.md.
class JsonView final : public BuildView {
 public:
  // Borrows the writer.
  JsonView(LineWriter& out, const BuildSubject& subject);

  bool wantsCounts() const override { return true; }
  void line(const BString& tab, const BString& text, const workbench::Diagnostic* diagnostic) override;
  void componentStarted(const BString& component, std::int32_t inputs) override;
  void componentEnded(const BString& component, e_btr result) override;
  void toolStarted(const ToolRun& run, const std::string& file) override;
  void toolFailed(const workbench::Diagnostic& failure) override;
  void toolEnded(const ToolRun& run, std::optional<std::int32_t> exitCode,
                 std::chrono::milliseconds elapsed) override;
  void ended(const BuildOutcome& outcome) override;

 private:
  LineWriter& out_;
  std::string component_;
};

}  // namespace forgeyard::console
