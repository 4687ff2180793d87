// The up-to-date decision of tool components.

#include <algorithm>

#include "engine/component/builder_component.h"
#include "platform/text/fold.h"
#include "typelib/folder.h"

namespace forgeyard {

namespace {

// Whether two paths are one file in a system that ignores case. Most pairs differ in the last letter already.
bool sameIgnoringCase(const BString& a, const BString& b) {
  if (a.empty() || a.size() != b.size()) return false;
  if (foldAscii(a.view().back()) != foldAscii(b.view().back())) return false;
  return equalFolded(a.view(), b.view());
}

// Whether an unresolved entry can name the same file: what stands behind its last backslash stays in
// resolving.
bool mayName(const BString& entry, const BString& output) {
  return !entry.empty() && !output.empty() &&
         (foldAscii(entry.view().back()) == foldAscii(output.view().back()) || entry.view().back() == u'.' ||
          entry.view().back() == u'\\');
}

}  // namespace

// Calls visit(entry) for the file itself and for its manual and automatic dependencies, unresolved, until one
// answers false.
template <class Visit>
void CBuilderComponent::forEachDependency(const BString& input, Visit&& visit) {
  if (!visit(input)) return;
  const Ref<ISourceFileDependencies> source = sourceFile(input).as<ISourceFileDependencies>();
  if (!source) return;
  for (const auto* list : {&source->manualDependencies(), &source->automaticDependencies()}) {
    for (const BString& entry : *list) {
      if (!visit(entry)) return;
    }
  }
}

// The first two reasons, which need no file at all.
Staleness CBuilderComponent::needsBuildBefore() {
  if (task_ != E_TASK_BUILD) return {Staleness::Why::TaskRunsAll};
  std::int32_t dirty = 0;
  check(builderSettings()->get_BuildDirty(&dirty));
  if (dirty) return {Staleness::Why::SettingsChanged};
  return {};
}

Staleness CBuilderComponent::NeedsBuild(const BString& file) {
  if (Staleness reason = needsBuildBefore()) return reason;
  if (dependenciesUnknown(file)) return {Staleness::Why::DependenciesUnknown, {}, file};
  return isOutOfDate({file}, outputNames(file));
}

Staleness CBuilderComponent::NeedsBuildOnce() {
  if (Staleness reason = needsBuildBefore()) return reason;
  return isOutOfDate(inputFiles_.list(), outputFiles_.list());
}

Staleness CBuilderComponent::isOutOfDate(const std::vector<BString>& inputs,
                                         const std::vector<BString>& outputs) {
  if (outputs.empty()) return {Staleness::Why::NoOutputs};
  for (const BString& output : outputs) {
    if (!fileTimes().exists(output)) return {Staleness::Why::OutputMissing, output};
  }
  for (const BString& output : outputs) {
    if (Staleness reason = outputOutOfDate(inputs, output)) return reason;
  }
  return {};
}

// An output that is also a dependency is rewritten in place, and file times can't tell: the time of a marker
// file stands for it. Empty when the output is none of the dependencies.
BString CBuilderComponent::markerFor(const std::vector<BString>& inputs, const BString& output) {
  bool inPlace = false;
  for (const BString& input : inputs) {
    forEachDependency(input, [&](const BString& entry) {
      inPlace = mayName(entry, output) &&
                sameIgnoringCase(resolveDependency(entry, times_.workingDirectory()), output);
      return !inPlace;
    });
    if (inPlace) break;
  }
  if (!inPlace) return {};
  BString marker = BString::concat(BString::concat(output, u".", name()), u".trg");
  const auto known =
      std::find_if(markers_.begin(), markers_.end(), [&](const auto& e) { return e.first == output; });
  if (known == markers_.end()) {
    markers_.emplace_back(output, marker);
  } else {
    known->second = marker;
  }
  return marker;
}

// Gives the marker of a file that was rewritten in place the present time. The outputs are looked at here as
// well, since a build that runs whatever file times say has not done so.
void CBuilderComponent::refreshMarker(const BString& file) {
  for (const BString& output : outputNames(file)) markerFor({file}, output);
  for (const auto& [output, marker] : markers_) {
    if (!sameIgnoringCase(output, file)) continue;
    static_cast<void>(files().createEmpty(marker));
    fileTimes().forget(marker);
  }
}

Staleness CBuilderComponent::outputOutOfDate(const std::vector<BString>& inputs, const BString& output) {
  const BString marker = markerFor(inputs, output);
  const BString& compared = marker.isNull() ? output : marker;
  const std::optional<FileTime> made = fileTimes().modified(compared);
  if (!made) return {Staleness::Why::OutputUnreadable, compared, {}, 0, 0, !marker.isNull()};
  Staleness reason;
  for (const BString& input : inputs) {
    forEachDependency(input, [&](const BString& entry) {
      const std::optional<FileTime> changed = times_.modified(entry);
      if (changed && *changed <= *made) return true;
      reason.why = changed ? Staleness::Why::DependencyNewer : Staleness::Why::DependencyMissing;
      reason.output = compared;
      reason.marker = !marker.isNull();
      reason.cause = resolveDependency(entry, times_.workingDirectory());
      reason.outputTime = *made;
      reason.causeTime = changed.value_or(0);
      return false;
    });
    if (reason) break;
  }
  return reason;
}

}  // namespace forgeyard
