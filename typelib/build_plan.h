#pragma once

#include <limits>
#include <vector>

#include "platform/files/file_system.h"
#include "typelib/builder.h"
#include "typelib/component.h"

namespace forgeyard {

// What a build would do, for who asks without running it.

// Times from here on are those of what earlier parts of the same build will have made, in the order of that.
inline constexpr FileTime kTimeToCome = std::numeric_limits<FileTime>::max() - (FileTime{1} << 40);

// Why a file or component has to be built, made where the decision falls: the build acts on it and a user can
// be told.
struct Staleness {
  enum class Why {
    UpToDate,
    TaskRunsAll,          // rebuild and compile always run
    SettingsChanged,      // the settings have changed since they last built cleanly
    NoOutputs,            // nothing to compare with
    OutputMissing,        // `output`
    OutputUnreadable,     // `output`, or the marker that stands for it, has no time to compare with
    DependencyMissing,    // `cause`
    DependencyNewer,      // `cause` is later than `output`
    DependenciesUnknown,  // what the tool reads beside the file can't be kept
  };
  Why why = Why::UpToDate;
  BString output{};
  BString cause{};
  FileTime outputTime = 0;
  FileTime causeTime = 0;
  bool marker = false;  // `output` is the marker of a file that is rewritten in place

  explicit operator bool() const { return why != Why::UpToDate; }
};

// One run of a tool, or what would be one if it were out of date.
struct PlannedRun {
  BString file;  // null: one run for all inputs
  std::vector<BString> outputs;
  BString command;  // as the output tab shows it
  Staleness staleness;
};

// What a build makes of one tool component. Full paths, sorted.
struct PlannedComponent {
  Ref<IComponent> component;
  std::vector<BString> inputs;
  std::vector<BString> outputs;   // of a clean: what is deleted
  std::vector<BString> problems;  // why the component ends in an error before it runs a tool
  std::vector<PlannedRun> runs;   // in order, what is up to date included
};

// Offered by the build tool.
struct IBuildPlan : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7080-93C4-4E6F-A8D1-2F60C1B49E01");

  // What the task would do with the active project, in the order of a build, decided as a build decides.
  // Runs nothing and writes nothing. Every run is taken for one that succeeds, and what it makes counts as
  // newer than all else to those behind it. Left out are components that the build would not get to, since
  // what feeds them has problems. E_FAIL without an active project, E_BUILDING during a build.
  virtual HRESULT PlanBuild(e_task task, std::vector<PlannedComponent>* out) = 0;
  // What counts beside a source file of the active project when its outputs are compared with it: manual and
  // automatic dependencies, as full paths. Nothing for a file that isn't in the project.
  virtual HRESULT GetDependencies(const BString& file, std::vector<BString>* out) = 0;
};

// Inside the module only, offered by the build tool: takes what a component would do in place of its doing
// it.
struct IBuildPlanner : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7081-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual bool isPlanning() const = 0;
  // When the run that is planned next will have ended: later than all times before.
  virtual FileTime nextTime() = 0;
  virtual HRESULT AddPlanned(PlannedComponent planned) = 0;
};

}  // namespace forgeyard
