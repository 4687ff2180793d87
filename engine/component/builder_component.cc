#include "engine/component/builder_component.h"

#include <algorithm>
#include <system_error>

#include "engine/run/worker.h"
#include "platform/files/file_system.h"
#include "platform/paths/no_break_space.h"
#include "platform/paths/shell_path.h"
#include "platform/text/fold.h"
#include "platform/text/split.h"
#include "typelib/folder.h"

namespace forgeyard {

void StringSet::assign(List unordered) {
  // Lists mostly come in order: folders are filled from sorted listings, and outputs follow their inputs.
  if (!std::is_sorted(unordered.begin(), unordered.end())) std::sort(unordered.begin(), unordered.end());
  unordered.erase(std::unique(unordered.begin(), unordered.end()), unordered.end());
  list_ = std::make_shared<const List>(std::move(unordered));
}

bool StringSet::contains(const BString& text) const {
  return std::binary_search(list_->begin(), list_->end(), text);
}

CBuilderComponent::CBuilderComponent() = default;

// What all tool components store and ask

void CBuilderComponent::describeRecord(RecordFields& fields) {
  describeName(fields);
  describeId(fields);
}

Ref<IUnknown> CBuilderComponent::cloneSettings(IUnknown& settings) {
  const Ref<IBuilderSettings> original = query<IBuilderSettings>(&settings);
  Ref<IBuilderSettings> clone;
  check(original ? original->get_Clone(&clone) : E_FAIL);
  return Ref<IUnknown>(clone.get());
}

// A changed setting makes the component dirty until a build of it completes; one that was dirty stays so.
void CBuilderComponent::settingsApplied(IUnknown& old, IUnknown& now) {
  const Ref<IBuilderSettings> before = query<IBuilderSettings>(&old);
  const Ref<IBuilderSettings> after = query<IBuilderSettings>(&now);
  std::int32_t dirty = 0;
  check(before->get_BuildDirty(&dirty));
  if (dirty) return;
  std::int32_t equal = 0;
  check(before->LogicallyEqual(after.get(), &equal));
  check(after->put_BuildDirty(equal ? 0 : 1));
}

HRESULT CBuilderComponent::OnNew(std::int32_t* addToProject) {
  return guard([&] {
    *addToProject = 0;
    auto [title, label] = newDialogTexts();
    DialogField field{std::move(label), u""};
    if (!askForFields(title, {&field, 1})) return;
    setName(field.text);
    *addToProject = 1;
  });
}

HRESULT CBuilderComponent::OutputFilesEnum(Ref<IEnumString>* out) {
  return guard([&] { *out = make<ListEnumerator<IEnumString>>(outputFiles_.shared()); });
}

HRESULT CBuilderComponent::InputFilesEnum(Ref<IEnumString>* out) {
  return guard([&] { *out = make<ListEnumerator<IEnumString>>(inputFiles_.shared()); });
}

BString CBuilderComponent::workingDirectory() const {
  BString directory;
  if (const Ref<IProject> owner = project()) check(owner->get_WorkingDirectory(&directory));
  return directory;
}

Ref<ISourceFile> CBuilderComponent::sourceFile(const BString& file) const {
  Ref<ISourceFile> found;
  if (const Ref<IProject> owner = project()) check(owner->FindFileInProject(file, &found));
  return found;
}

// StartTask: macros, then what goes in, then what comes out

void CBuilderComponent::StartTask() {
  beginTask();
  setProjectMacros();
  parseInputPatterns();
  parseOutputPatterns();
  gatherInputs();
  gatherOutputs();
  launch();
}

void CBuilderComponent::beginTask() {
  builderTask_ = lookUp<IBuilderTask>(services(), SID_BuildTool);
  if (!builderTask_) throw StatusError(E_FAIL);
  check(builderTask_->get_CurrentTask(&task_));
  headerWritten_ = false;
  inPlace_.clear();
}

void CBuilderComponent::setProjectMacros() {
  macros_.clear();
  const BString directory = workingDirectory();
  BString intermediate;
  BString output;
  if (const Ref<IConfiguration> configuration = activeConfiguration()) {
    check(configuration->get_IntermediateDirectory(&intermediate));
    check(configuration->get_OutputDirectory(&output));
  }
  macros_.set(Macro::CIntDir, absoluteDirectory(intermediate, directory));
  macros_.set(Macro::COutDir, absoluteDirectory(output, directory));
  macros_.set(Macro::WorkDir, directory);
  for (const Macro empty : {Macro::InDir, Macro::File, Macro::FileName, Macro::FileExt, Macro::FileFullPath,
                            Macro::FileFullPathList, Macro::OutFileFullPathList}) {
    macros_.set(empty, u"");
  }
  BString commandOutDir;
  check(builderSettings()->get_CommandOutDir(&commandOutDir));
  macros_.set(Macro::OutDir, absoluteDirectory(macros_.expand(commandOutDir), directory));
}

void CBuilderComponent::parseInputPatterns() {
  BString list;
  check(builderSettings()->get_Input(&list));
  inputPatterns_.clear();
  for (const std::u16string_view piece : SplitList(list.view())) {
    inputPatterns_.push_back(piece.starts_with(u'.') ? BString::concat(u"*", piece) : BString(piece));
  }
}

void CBuilderComponent::parseOutputPatterns() {
  BString list;
  check(builderSettings()->get_Output(&list));
  const auto pieces = SplitList(list.view());
  StringSet patterns;
  patterns.assign({pieces.begin(), pieces.end()});
  outputPatterns_ = patterns.list();
}

void CBuilderComponent::gatherInputs() {
  StringSet::List files;
  const auto accepted = [this](const BString& file) {
    return inputPatterns_.empty() ||
           std::any_of(inputPatterns_.begin(), inputPatterns_.end(),
                       [&](const BString& spec) { return PathMatchSpecA(file, spec); });
  };
  for (const Ref<IBuilderInput>& source : sources()) {
    const Ref<IBuilderPrivate> lists = source.as<IBuilderPrivate>();
    Ref<IEnumString> outputs;
    if (!lists || failed(lists->OutputFilesEnum(&outputs))) continue;
    forEach(outputs, [&](const BString& file) {
      if (accepted(file)) files.push_back(file);
    });
  }
  if (task_ == E_TASK_COMPILE) {
    Ref<IEnumString> chosen;
    check(builderTask_->PreBuildSelection(&chosen));
    StringSet::List names;
    forEach(chosen, [&](const BString& file) { names.push_back(file); });
    StringSet selection;
    selection.assign(std::move(names));
    std::erase_if(files, [&](const BString& file) { return !selection.contains(file); });
  }
  inputFiles_.assign(std::move(files));
}

void CBuilderComponent::gatherOutputs() {
  if (gathersOnce()) {
    gatherOutputsOfOneRun();
  } else {
    gatherOutputsOfEachFile();
  }
}

void CBuilderComponent::gatherOutputsOfEachFile() {
  StringSet::List files;
  files.reserve(inputFiles_.list().size() * outputPatterns_.size());
  for (const BString& input : inputFiles_.list()) {
    for (BString& name : outputNames(input)) files.push_back(std::move(name));
  }
  outputFiles_.assign(std::move(files));
}

void CBuilderComponent::gatherOutputsOfOneRun() {
  StringSet::List files;
  BString command;
  check(builderSettings()->get_Command(&command));
  // A command that takes a list has nothing to do without one.
  const bool idle = inputFiles_.empty() &&
                    command.view().find(macroName(Macro::FileFullPathList)) != std::u16string_view::npos;
  if (!idle) {
    for (const BString& pattern : outputPatterns_) {
      if (!PathIsRelativeA(pattern)) {
        files.push_back(pattern);
        continue;
      }
      std::u16string path(macros_.value(Macro::OutDir));
      PathAddBackslashA(path);
      path += pattern.view();
      auto canonical = PathCanonicalizeA(std::u16string_view(path), kNoPathLimit);
      files.emplace_back(canonical ? *canonical : path);
    }
  }
  outputFiles_.assign(std::move(files));
}

std::vector<BString> CBuilderComponent::outputNames(const BString& file) const {
  std::u16string_view stem = file.view();
  stem.remove_suffix(PathFindExtensionA(stem).size());
  stem = PathFindFileNameA(stem);
  std::u16string directory(macros_.value(Macro::OutDir));
  PathAddBackslashA(directory);
  std::vector<BString> names;
  names.reserve(outputPatterns_.size());
  for (const BString& pattern : outputPatterns_) names.push_back(BString::concat(directory, stem, pattern));
  return names;
}

void CBuilderComponent::launch() {
  if (task_ == E_TASK_FAKEBUILD) {
    check(BuildResult(E_BTR_COMPLETED, 0));
  } else if (const auto planner = builderTask_.as<IBuildPlanner>(); planner && planner->isPlanning()) {
    plan(*planner);
  } else {
    StartWorker(this, this);
  }
}

// Plans

void CBuilderComponent::plan(IBuildPlanner& planner) {
  PlannedComponent planned;
  planned.component = Ref<IComponent>(static_cast<IComponent*>(this));
  planned.inputs = inputFiles_.list();
  planned.outputs = outputFiles_.list();
  if (task_ != E_TASK_CLEAN && !inputFiles_.empty()) {
    planned_ = &planned;
    const struct Ended {
      PlannedComponent*& planned;
      ~Ended() { planned = nullptr; }
    } ended{planned_};
    prepareTimes();
    if (commandReady()) planned.runs = plannedRuns(planner);
  }
  const e_btr status = planned.problems.empty() ? E_BTR_COMPLETED : E_BTR_ERROR;
  check(planner.AddPlanned(std::move(planned)));
  check(BuildResult(status, 0));
}

// One after the other, as in a build: what a run makes can be what the next one reads, or makes too.
std::vector<PlannedRun> CBuilderComponent::plannedRuns(IBuildPlanner& planner) {
  std::vector<PlannedRun> runs;
  const auto add = [&](PlannedRun run) {
    if (run.staleness) countAsMade(run.outputs, planner.nextTime());
    runs.push_back(std::move(run));
  };
  if (gathersOnce()) {
    add({{}, outputFiles_.list(), BuildOnceCommand(), NeedsBuildOnce()});
    return runs;
  }
  runs.reserve(inputFiles_.list().size());
  for (const BString& file : inputFiles_.list()) add(plannedRun(file));
  return runs;
}

void CBuilderComponent::countAsMade(const std::vector<BString>& outputs, FileTime time) {
  bool known = false;
  for (const BString& output : outputs) {
    known = fileTimes().assume(output, time) || known;
    // As a dependency it has another spelling.
    if (const BString entry = withNoBreakSpaces(output); entry != output)
      known = fileTimes().assume(entry, time) || known;
  }
  if (known) times_ = DependencyTimes(times_.workingDirectory());
}

PlannedRun CBuilderComponent::plannedRun(const BString& file) {
  BString command = commandFor(file);
  return {file, outputNames(file), std::move(command), NeedsBuild(file)};
}

void CBuilderComponent::say(const BString& text) {
  if (planned_) {
    planned_->problems.push_back(text);
  } else {
    OutputTab::say(text);
  }
}

// DoTask

HRESULT CBuilderComponent::DoTask(e_btr* status) {
  *status = E_BTR_COMPLETED;
  progress_.begin(services(), name(), inputFiles_.list().size());
  const HRESULT outcome = guard([&] {
    try {
      runTask(status);
    } catch (const std::system_error& error) {
      // The system is out of what a tool run needs: open files, threads.
      say(BString::fromNarrow(error.what()));
      *status = E_BTR_FATAL;
    }
  });
  progress_.end(failed(outcome) ? E_BTR_FATAL : *status);
  return outcome;
}

void CBuilderComponent::runTask(e_btr* status) {
  if (task_ == E_TASK_CLEAN) {
    cleanOutputs();
  } else if (!inputFiles_.empty()) {
    prepareTimes();
    DoBuild(status);
  } else if (task_ != E_TASK_COMPILE) {
    writeHeader();
    say(u"No inputs to build.");
  }
}

void CBuilderComponent::writeHeader() {
  say(BString::concat(u"Component \"", name(), u"\""));
}

void CBuilderComponent::cleanOutputs() {
  if (!outputFiles_.empty()) writeHeader();
  for (const BString& file : outputFiles_.list()) {
    static_cast<void>(files().deleteFile(file));
    say(BString::concat(u"Deleting ", file));
  }
  forgetFileTimes();
}

// The look ahead leaves no trace: a marker is for the file at hand.
std::size_t CBuilderComponent::countNeeded(std::span<const BString> names) {
  const auto inPlace = inPlace_;
  const auto needed =
      std::count_if(names.begin(), names.end(), [&](const BString& file) { return bool(NeedsBuild(file)); });
  inPlace_ = inPlace;
  return static_cast<std::size_t>(needed);
}

CBuilderComponent::FileResult CBuilderComponent::BuildFile(const BString& file,
                                                           std::span<const BString> rest) {
  if (!NeedsBuild(file)) return {};
  progress_.nextTool(file, [&] { return countNeeded(rest); });
  FileResult result{true, runTool(commandFor(file))};
  if (result.status == E_BTR_COMPLETED) refreshMarker(file);
  return result;
}

e_btr CBuilderComponent::BuildOnce() {
  const BString command = BuildOnceCommand();
  if (!NeedsBuildOnce()) return E_BTR_COMPLETED;
  progress_.nextTool({}, [] { return 0; });
  return runTool(command);
}

BString CBuilderComponent::commandFor(const BString& file) {
  BString command;
  check(builderSettings()->get_Command(&command));
  macros_.setFile(file);
  return macros_.expand(command);
}

BString CBuilderComponent::BuildOnceCommand() {
  BString command;
  check(builderSettings()->get_Command(&command));
  return macros_.expand(command);
}

e_btr CBuilderComponent::runTool(const BString& command) {
  if (!headerWritten_) {
    headerWritten_ = true;
    if (task_ == E_TASK_COMPILE) writeHeader();
  }
  if (!runner_.OpenOutputReader(this)) {
    say(u"Error creating command output reader.");
    return E_BTR_FATAL;
  }
  // Also when the command's way through the host ends in an exception: the tool may have run.
  const struct Ended {
    ~Ended() { fileTimesAfterTool(); }
  } ended;
  return runner_.ExecuteCommand(this, command, workingDirectory(), progress_);
}

void CBuilderComponent::clearBuildDirty(e_btr status) {
  if (status == E_BTR_COMPLETED && task_ != E_TASK_COMPILE) check(builderSettings()->put_BuildDirty(0));
}

void CBuilderComponent::ReportResult(e_btr status) {
  const bool wholeTask = task_ == E_TASK_BUILD || task_ == E_TASK_REBUILD;
  const std::u16string_view word = status == E_BTR_COMPLETED ? u"OK"
                                   : status == E_BTR_STOPPED ? u"STOPPED"
                                                             : u"ERROR";
  if (headerWritten_ || (wholeTask && status != E_BTR_COMPLETED)) {
    say(BString::concat(BString::concat(u"Component \"", name(), u"\" result: "), word));
  } else if (wholeTask) {
    say(u"All outputs up to date.");
  }
  say(kSeparatorLine);
}

}  // namespace forgeyard
