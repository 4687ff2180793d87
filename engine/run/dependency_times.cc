#include "engine/run/dependency_times.h"

#include <cstdint>
#include <string>
#include <utility>

#include "platform/paths/shell_path.h"

namespace forgeyard {

namespace {

std::size_t hashOf(const void* buffer) {
  return static_cast<std::size_t>((reinterpret_cast<std::uintptr_t>(buffer) >> 4) * 0x9E3779B97F4A7C15u >>
                                  20);
}

}  // namespace

FileTimeCache& fileTimes() {
  static FileTimeCache cache;
  return cache;
}

void forgetFileTimes() {
  fileTimes().invalidate();
}

void fileTimesAfterTool() noexcept {
  fileTimes().afterTool();
}

BString resolveDependency(const BString& entry, const BString& workingDirectory) {
  if (!entry.view().starts_with(u".\\")) return entry;
  std::u16string path(workingDirectory.view());
  path += u'\\';
  path += entry.view();
  auto canonical = PathCanonicalizeA(std::u16string_view(path), kNoPathLimit);
  return canonical ? BString(*canonical) : BString(path);
}

DependencyTimes::Slot& DependencyTimes::slot(const BString& entry) {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = hashOf(entry.identity()) & mask;
  while (slots_[at].stamp.value != 0 && slots_[at].entry.identity() != entry.identity()) at = (at + 1) & mask;
  return slots_[at];
}

void DependencyTimes::grow() {
  std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slots_.empty() ? 256 : slots_.size() * 2));
  for (Slot& kept : old) {
    if (kept.stamp.value != 0) slot(kept.entry) = std::move(kept);
  }
}

std::optional<FileTime> DependencyTimes::modified(const BString& entry) {
  if (used_ * 2 >= slots_.size()) grow();
  Slot& found = slot(entry);
  if (!cache_->isCurrent(found.stamp)) {
    if (found.stamp.value == 0) {
      ++used_;
      found.entry = entry;
    }
    found.time = cache_->modified(resolveDependency(entry, workingDirectory_), found.stamp);
  }
  return found.time;
}

void DependencyTimes::prefetch(const std::vector<BString>& entries) const {
  std::vector<BString> paths;
  paths.reserve(entries.size());
  for (const BString& entry : entries) paths.push_back(resolveDependency(entry, workingDirectory_));
  cache_->prefetch(paths);
}

}  // namespace forgeyard
