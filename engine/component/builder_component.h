#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/component/component_base.h"
#include "engine/component/macro_map.h"
#include "engine/run/dependency_times.h"
#include "engine/run/run_progress.h"
#include "engine/run/tool_runner.h"
#include "engine/staleness.h"
#include "typelib/build_plan.h"
#include "typelib/settings.h"

namespace forgeyard {

struct ISourceFile;

// A sorted set of texts, exact in comparison.
class StringSet {
 public:
  using List = std::vector<BString>;

  void assign(List unordered);
  const List& list() const { return *list_; }
  // The same list for others to keep: it never changes, a change of the set makes a new one.
  const std::shared_ptr<const List>& shared() const { return list_; }
  bool empty() const { return list_->empty(); }
  bool contains(const BString& text) const;

 private:
  std::shared_ptr<const List> list_ = std::make_shared<List>();
};

// The half that all tool components share: it works out what goes in and what comes out, decides what is out
// of date, runs the tool for it and says so in the output tab. Derived classes say what their tool is.
//
// StartTask and DoTask run on the main thread; while a tool runs DoTask serves other calls.
class CBuilderComponent : public CComponentBase, public IBuilderCreator {
 public:
  using Implements = TypeList<CComponentBase, IBuilderCreator>;

  // IBuilderCreator
  HRESULT DoTask(e_btr* status) override;
  // IBuilderPrivate
  HRESULT OutputFilesEnum(Ref<IEnumString>* out) override;
  HRESULT InputFilesEnum(Ref<IEnumString>* out) override;

  // IComponent
  HRESULT OnNew(std::int32_t* addToProject) override;

 protected:
  CBuilderComponent();

  // Runs the tool for what is out of date and sets the status.
  virtual void DoBuild(e_btr* status) = 0;
  // What comes first in it: works out the command. False after lines that say why there is none.
  virtual bool commandReady() = 0;
  // The command of a component that runs once for all inputs.
  virtual BString BuildOnceCommand();
  // Whether outputs are whole names for one run, or suffixes for each input.
  virtual bool gathersOnce() = 0;
  // Whether more may go into the file's outputs than is known, so that their times say nothing.
  virtual bool dependenciesUnknown(const BString& /*file*/) { return false; }
  // Title and label of the dialog for a new component.
  virtual std::pair<BString, BString> newDialogTexts() const = 0;

  // CBuilderInputOutput
  void StartTask() override;
  void OnTaskEnded() override {}
  void ReportResult(e_btr status) override;

  // CComponentBase
  void describeRecord(RecordFields& fields) override;
  Ref<IUnknown> cloneSettings(IUnknown& settings) override;
  void settingsApplied(IUnknown& old, IUnknown& now) override;

  // Steps of StartTask, for a class with an order of its own.
  void beginTask();
  void setProjectMacros();
  void parseInputPatterns();
  void parseOutputPatterns();
  void gatherInputs();
  void gatherOutputs();
  // Ends a task that only works out lists, tells a plan what would be done, or starts the worker thread.
  void launch();

  // What became of one file.
  struct FileResult {
    bool needed = false;
    e_btr status = E_BTR_COMPLETED;
  };
  // `rest`: the files that come behind it.
  FileResult BuildFile(const BString& file, std::span<const BString> rest);
  e_btr BuildOnce();
  // Every input file in turn: an error lets the others be tried, a stop or a failed start ends it. `built` is
  // told of each file that was needed and completed.
  template <class Built>
  e_btr buildEachFile(Built&& built);
  // After a build without errors the settings count as built.
  void clearBuildDirty(e_btr status);

  Staleness NeedsBuild(const BString& file);
  Staleness NeedsBuildOnce();
  void writeHeader();
  // A line to the tab; in a plan, a reason why nothing runs.
  void say(const BString& text);

  Ref<IBuilderSettings> builderSettings() { return activeSettings().as<IBuilderSettings>(); }
  std::vector<BString> outputNames(const BString& file) const;
  Ref<ISourceFile> sourceFile(const BString& file) const;

  e_task task() const { return task_; }
  const StringSet& inputFiles() const { return inputFiles_; }
  const StringSet& outputFiles() const { return outputFiles_; }
  MacroMap& macros() { return macros_; }

 private:
  void runTask(e_btr* status);
  void plan(IBuildPlanner& planner);
  std::vector<PlannedRun> plannedRuns(IBuildPlanner& planner);
  PlannedRun plannedRun(const BString& file);
  void countAsMade(const std::vector<BString>& outputs, FileTime time);
  BString commandFor(const BString& file);
  void cleanOutputs();
  void gatherOutputsOfEachFile();
  void gatherOutputsOfOneRun();
  class Question;
  Staleness decide(const StalenessQuestion& question);
  void rememberMarker(const InPlaceOutput& output);
  void refreshMarker(const BString& file);
  BString workingDirectory() const;
  void prepareTimes();
  std::size_t countNeeded(std::span<const BString> names);
  // Header, reader and tool, for a command that is needed.
  e_btr runTool(const BString& command);

  std::vector<BString> outputPatterns_;
  std::vector<BString> inputPatterns_;
  StringSet inputFiles_;
  StringSet outputFiles_;
  MacroMap macros_;
  std::vector<InPlaceOutput> inPlace_;
  Ref<IBuilderTask> builderTask_;
  e_task task_ = E_TASK_FAKEBUILD;
  bool headerWritten_ = false;
  PlannedComponent* planned_ = nullptr;  // while a plan is made
  ToolRunner runner_;
  RunProgress progress_;
  DependencyTimes times_;
};

template <class Built>
e_btr CBuilderComponent::buildEachFile(Built&& built) {
  e_btr status = E_BTR_COMPLETED;
  // The list is kept: lists may be worked out anew while a tool runs.
  const std::shared_ptr<const StringSet::List> inputs = inputFiles_.shared();
  std::span<const BString> rest(*inputs);
  while (!rest.empty()) {
    const BString& file = rest.front();
    rest = rest.subspan(1);
    const FileResult result = BuildFile(file, rest);
    if (result.status != E_BTR_COMPLETED) status = result.status;
    if (status == E_BTR_STOPPED || status == E_BTR_FATAL) break;
    if (result.needed && result.status == E_BTR_COMPLETED) built(file);
  }
  return status;
}

}  // namespace forgeyard
