#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "hosts/console/base/exit_code.h"
#include "typelib/progress.h"
#include "workbench/diagnostics/diagnostic.h"
#include "workbench/diagnostics/findings.h"

namespace forgeyard::console {

// What a build run is about.
struct BuildSubject {
  std::string project;        // host path of the file
  std::string directory;      // host path of the project's directory
  std::string configuration;  // its name
  std::string task;           // "build", "rebuild", "clean" or "compile"
};

// What has become of it.
struct BuildOutcome {
  ExitCode result;
  const workbench::Findings& findings;
  std::int32_t tools = 0;  // that have been started
  std::chrono::milliseconds elapsed{0};
};

// Shows a build run in one of the forms of output: gets all that happens in it, in order. Main thread only.
class BuildView {
 public:
  BuildView() = default;
  BuildView(const BuildView&) = delete;
  BuildView& operator=(const BuildView&) = delete;
  virtual ~BuildView() = default;

  // Whether the number of a component's tool runs is of use, which takes a look at all its files.
  virtual bool wantsCounts() const = 0;
  // A line of an output tab; what it tells, if it is a tool's and tells a fault.
  virtual void line(const BString& tab, const BString& text, const workbench::Diagnostic* diagnostic) = 0;
  virtual void componentStarted(const BString& component, std::int32_t inputs) = 0;
  virtual void componentEnded(const BString& component, e_btr result) = 0;
  // `file`: the host path of the run's file, relative to the project's directory for what lies below that.
  virtual void toolStarted(const ToolRun& run, const std::string& file) = 0;
  // What counts as the fault of a tool that fails without telling one; ahead of its end.
  virtual void toolFailed(const workbench::Diagnostic& failure) = 0;
  virtual void toolEnded(const ToolRun& run, std::optional<std::int32_t> exitCode,
                         std::chrono::milliseconds elapsed) = 0;
  // Behind the last line.
  virtual void ended(const BuildOutcome& outcome) = 0;
};

}  // namespace forgeyard::console
