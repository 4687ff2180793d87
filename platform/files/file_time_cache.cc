#include "platform/files/file_time_cache.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "platform/files/status_batch.h"

namespace forgeyard {
namespace {

constexpr std::size_t minimumSlots = 64;
// Fewer paths are read sooner than threads are started.
constexpr std::size_t worthABatch = 512;

}  // namespace

std::optional<FileTime> FileTimeCache::modified(const BString& path, Stamp& stamp) {
  Slot& slot = entry(path);
  slot.stampGiven = true;
  stamp = slot.stamp;
  return answer(slot);
}

bool FileTimeCache::exists(const BString& path) {
  return entry(path).known != Known::Missing;
}

void FileTimeCache::invalidate() noexcept {
  endWatching();
  mayWatch_ = true;
  toolHasRun_ = false;
}

void FileTimeCache::afterTool() noexcept {
  toolHasRun_ = true;
  cells_.front() = ++lastValue_;
  try {
    if (watch_) {
      if (!takeChanges()) endWatching();
    } else if (mayWatch_ && readAgain_ >= watching_.afterReads && disk().isWatchable()) {
      beginWatching();
    }
  } catch (...) {
    endWatching();
  }
}

// All that is known now was read unwatched and goes.
void FileTimeCache::beginWatching() {
  watch_ = FileChangeWatch::begin(watching_.maximumWatches ? watching_.maximumWatches
                                                           : FileChangeWatch::allowance());
  mayWatch_ = watch_ != nullptr;
  watched_ = &disk();
  ++watchNumber_;
}

// False: everything may have changed.
bool FileTimeCache::takeChanges() {
  const bool told = watched_ == &disk() && watch_->collect(changes_);
  mayWatch_ = !watch_->exhausted();
  if (!told) return false;
  for (const FileChangeWatch::Subject subject : changes_) {
    if (subject + 1 < cells_.size()) cells_[subject + 1] = ++lastValue_;
  }
  return true;
}

// Voids every stamp: the values of cells that come again are new.
void FileTimeCache::endWatching() noexcept {
  watch_.reset();
  cells_.resize(1);
  cells_.front() = ++lastValue_;
  readAgain_ = 0;
}

bool FileTimeCache::assume(const BString& path, FileTime time) {
  Slot& slot = slotFor(path);
  const bool stampHeld = isCurrent(slot) && slot.stampGiven;
  slot.stampGiven = false;
  slot.stamp = {cells_.front(), 0};
  slot.known = Known::Time;
  slot.time = time;
  return stampHeld;
}

void FileTimeCache::forget(const BString& path) noexcept {
  if (slots_.empty()) return;
  if (Slot* slot = find(path, path.hash()); !slot->path.isNull()) slot->known = Known::Nothing;
}

void FileTimeCache::prefetch(std::span<const BString> paths) {
  if (watch_ || paths.size() < worthABatch) return;
  std::vector<BString> asked;
  for (const BString& path : paths) {
    if (slots_.empty() || !isCurrent(*find(path, path.hash()))) asked.push_back(path);
  }
  const auto statuses = statusBatch(disk(), asked);
  for (std::size_t i = 0; i < asked.size(); ++i) {
    Slot& slot = slotFor(asked[i]);
    slot.stamp = {cells_.front(), 0};
    store(slot, statuses[i]);
  }
}

FileTimeCache::Slot& FileTimeCache::entry(const BString& path) {
  Slot& slot = slotFor(path);
  if (!isCurrent(slot)) read(slot);
  return slot;
}

FileTimeCache::Slot& FileTimeCache::slotFor(const BString& path) {
  // At most three quarters full, so that a search ends.
  if (4 * (used_ + 1) > 3 * slots_.size()) rehash();
  const std::size_t hash = path.hash();
  Slot& slot = *find(path, hash);
  if (slot.path.isNull()) {
    // Null and empty text are one key, and a key is never null.
    slot.path = path.isNull() ? BString(u"") : path;
    slot.hash = hash;
    ++used_;
  }
  return slot;
}

// The slot of the path, or the free one where it belongs.
FileTimeCache::Slot* FileTimeCache::find(const BString& path, std::size_t hash) noexcept {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
    Slot& slot = slots_[i];
    if (slot.path.isNull() || (slot.hash == hash && slot.path == path)) return &slot;
  }
}

void FileTimeCache::read(Slot& slot) {
  if (toolHasRun_ && slot.known != Known::Nothing) ++readAgain_;
  slot.known = Known::Nothing;
  slot.stamp = {cells_.front(), 0};
  FileSystem& source = disk();
  const auto place = watch(slot, source);
  const Stamp watched = place ? stampOf(place->subject) : Stamp();
  const auto status = source.status(slot.path);
  if (place) {
    if (status ? place->exists && status->plain : !place->exists) {
      slot.stamp = watched;
    } else {
      slot.unwatchable = watchNumber_;
    }
  }
  store(slot, status);
}

void FileTimeCache::store(Slot& slot, const std::optional<FileStatus>& status) noexcept {
  slot.stampGiven = false;
  if (!status) {
    slot.known = Known::Missing;
  } else if (const auto time = status->comparableTime()) {
    slot.known = Known::Time;
    slot.time = *time;
  } else {
    slot.known = Known::ExistsWithoutTime;
  }
}

std::optional<FileChangeWatch::Place> FileTimeCache::watch(Slot& slot, const FileSystem& read) {
  if (!watch_ || watched_ != &read || slot.unwatchable == watchNumber_) return std::nullopt;
  const bool first = std::exchange(slot.readUnder, watchNumber_) != watchNumber_;
  if (first && watching_.fromSecondReading) return std::nullopt;
  const auto place = watch_->watch(slot.path);
  if (!place) slot.unwatchable = watchNumber_;
  return place;
}

FileTimeCache::Stamp FileTimeCache::stampOf(FileChangeWatch::Subject subject) {
  const std::uint32_t cell = subject + 1;
  while (cells_.size() <= cell) cells_.push_back(++lastValue_);
  return {cells_[cell], cell};
}

// Makes room: paths whose times are void go.
void FileTimeCache::rehash() {
  const auto current =
      std::count_if(slots_.begin(), slots_.end(), [this](const Slot& s) { return isCurrent(s); });
  const std::size_t wanted = std::bit_ceil(2 * (static_cast<std::size_t>(current) + 1));
  std::vector<Slot> old(std::max(minimumSlots, wanted));
  old.swap(slots_);
  used_ = 0;
  for (Slot& slot : old) {
    if (!isCurrent(slot)) continue;
    *find(slot.path, slot.hash) = std::move(slot);
    ++used_;
  }
}

}  // namespace forgeyard
