#include "engine/staleness.h"

#include "platform/text/fold.h"

namespace forgeyard {

namespace {

using Why = Staleness::Why;

// Whether an unresolved entry can name the same file. Resolving keeps the text after the last backslash.
bool mayName(const BString& entry, const BString& output) {
  return !entry.empty() && !output.empty() &&
         (foldAscii(entry.view().back()) == foldAscii(output.view().back()) || entry.view().back() == u'.' ||
          entry.view().back() == u'\\');
}

// Calls visit(entry) for every dependency, unresolved, until one call returns false. Returns whether all were
// visited.
template <class Visit>
bool forEachDependency(std::span<const StalenessInput> inputs, Visit&& visit) {
  for (const StalenessInput& input : inputs) {
    if (!visit(input.file)) return false;
    for (const auto list : {input.manualDependencies, input.automaticDependencies}) {
      for (const BString& entry : list) {
        if (!visit(entry)) return false;
      }
    }
  }
  return true;
}

// Compares one output, or its marker, with every dependency.
Staleness compare(const BString& compared, bool isMarker, std::span<const StalenessInput> inputs,
                  DependencyTimes& times) {
  const std::optional<FileTime> made = times.cache().modified(compared);
  if (!made) return {Why::OutputUnreadable, compared, {}, 0, 0, isMarker};
  Staleness reason;
  forEachDependency(inputs, [&](const BString& entry) {
    const std::optional<FileTime> changed = times.modified(entry);
    if (changed && *changed <= *made) return true;
    reason = {changed ? Why::DependencyNewer : Why::DependencyMissing,
              compared,
              resolveDependency(entry, times.workingDirectory()),
              *made,
              changed.value_or(0),
              isMarker};
    return false;
  });
  return reason;
}

// The reasons for which no file has to be looked at.
Staleness beforeFiles(const StalenessQuestion& question) {
  if (question.taskRunsAll) return {Why::TaskRunsAll};
  if (question.settingsChanged) return {Why::SettingsChanged};
  if (question.dependenciesUnknown) return {Why::DependenciesUnknown, {}, question.inputs.front().file};
  if (question.outputs.empty()) return {Why::NoOutputs};
  return {};
}

}  // namespace

bool sameFile(const BString& a, const BString& b) {
  if (a.empty() || a.size() != b.size()) return false;
  // Most pairs differ in the last letter already.
  if (foldAscii(a.view().back()) != foldAscii(b.view().back())) return false;
  return equalFolded(a.view(), b.view());
}

BString markerOf(const BString& output, const StalenessQuestion& question, const DependencyTimes& times) {
  const bool separate = forEachDependency(question.inputs, [&](const BString& entry) {
    return !mayName(entry, output) || !sameFile(resolveDependency(entry, times.workingDirectory()), output);
  });
  if (separate) return {};
  return BString::concat(BString::concat(output, u".", question.component), u".trg");
}

Staleness staleness(const StalenessQuestion& question, DependencyTimes& times,
                    std::vector<InPlaceOutput>& inPlace) {
  if (Staleness reason = beforeFiles(question)) return reason;
  for (const BString& output : question.outputs) {
    if (!times.cache().exists(output)) return {Why::OutputMissing, output};
  }
  for (const BString& output : question.outputs) {
    const BString marker = markerOf(output, question, times);
    if (!marker.isNull()) inPlace.push_back({output, marker});
    const BString& compared = marker.isNull() ? output : marker;
    if (Staleness reason = compare(compared, !marker.isNull(), question.inputs, times)) return reason;
  }
  return {};
}

}  // namespace forgeyard
