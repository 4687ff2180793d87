// Asks, for a tool component, whether a run is needed: engine/staleness.h decides.

#include <algorithm>

#include "engine/component/builder_component.h"
#include "platform/files/file_system.h"
#include "typelib/folder.h"

namespace forgeyard {

// The question about a run of the component, with the lists that it borrows.
class CBuilderComponent::Question : public StalenessQuestion {
 public:
  explicit Question(CBuilderComponent& component) {
    this->component = component.name();
    taskRunsAll = component.task_ != E_TASK_BUILD;
    std::int32_t dirty = 0;
    if (!taskRunsAll) check(component.builderSettings()->get_BuildDirty(&dirty));
    settingsChanged = dirty != 0;
  }

  bool needsNoFiles() const { return taskRunsAll || settingsChanged; }

  void setInputs(const CBuilderComponent& component, std::span<const BString> files) {
    lists_.reserve(files.size());
    for (const BString& file : files) {
      const Ref<ISourceFileDependencies> source = component.sourceFile(file).as<ISourceFileDependencies>();
      StalenessInput& input = lists_.emplace_back(StalenessInput{file});
      if (!source) continue;
      input.manualDependencies = source->manualDependencies();
      input.automaticDependencies = source->automaticDependencies();
      sources_.push_back(source);
    }
    inputs = lists_;
  }

 private:
  std::vector<StalenessInput> lists_;
  std::vector<Ref<ISourceFileDependencies>> sources_;  // own the lists
};

// Entries are resolved against the project's directory; what was resolved against another one is void.
void CBuilderComponent::prepareTimes() {
  const BString directory = workingDirectory();
  if (times_.workingDirectory() != directory) times_ = DependencyTimes(directory);
  if (Question(*this).needsNoFiles()) return;
  times_.prefetch(inputFiles_.list());
  fileTimes().prefetch(outputFiles_.list());
}

Staleness CBuilderComponent::NeedsBuild(const BString& file) {
  Question question(*this);
  std::vector<BString> outputs;
  if (!question.needsNoFiles()) {
    question.dependenciesUnknown = dependenciesUnknown(file);
    question.setInputs(*this, {&file, 1});
    outputs = outputNames(file);
    question.outputs = outputs;
  }
  return decide(question);
}

Staleness CBuilderComponent::NeedsBuildOnce() {
  Question question(*this);
  if (!question.needsNoFiles()) question.setInputs(*this, inputFiles_.list());
  question.outputs = outputFiles_.list();
  return decide(question);
}

Staleness CBuilderComponent::decide(const StalenessQuestion& question) {
  std::vector<InPlaceOutput> found;
  Staleness reason = staleness(question, times_, found);
  for (const InPlaceOutput& output : found) rememberMarker(output);
  return reason;
}

void CBuilderComponent::rememberMarker(const InPlaceOutput& output) {
  const auto known = std::find_if(inPlace_.begin(), inPlace_.end(),
                                  [&](const auto& entry) { return entry.output == output.output; });
  if (known == inPlace_.end()) {
    inPlace_.push_back(output);
  } else {
    known->marker = output.marker;
  }
}

// Gives the marker of a file that was rewritten in place the present time. A build that runs whatever file
// times say has not looked for such outputs yet.
void CBuilderComponent::refreshMarker(const BString& file) {
  Question question(*this);
  question.setInputs(*this, {&file, 1});
  for (const BString& output : outputNames(file)) {
    const BString marker = markerOf(output, question, times_);
    if (!marker.isNull()) rememberMarker({output, marker});
  }
  for (const InPlaceOutput& output : inPlace_) {
    if (!sameFile(output.output, file)) continue;
    static_cast<void>(files().createEmpty(output.marker));
    fileTimes().forget(output.marker);
  }
}

}  // namespace forgeyard
