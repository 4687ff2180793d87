#include "platform/files/file_time_cache.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace forgeyard {
namespace {

constexpr std::size_t minimumSlots = 64;

}  // namespace

std::optional<FileTime> FileTimeCache::modified(const BString& path) {
  const Slot& slot = entry(path);
  return slot.known == Known::Time ? std::optional<FileTime>(slot.time) : std::nullopt;
}

bool FileTimeCache::exists(const BString& path) {
  return entry(path).known != Known::Missing;
}

void FileTimeCache::invalidate() noexcept {
  if (++generation_ != 0) return;
  // After four thousand million tool runs the numbers begin anew, and no slot may look current by chance.
  for (Slot& slot : slots_) slot.known = Known::Nothing;
}

void FileTimeCache::forget(const BString& path) noexcept {
  if (slots_.empty()) return;
  if (Slot* slot = find(path, path.hash()); !slot->path.isNull()) slot->known = Known::Nothing;
}

const FileTimeCache::Slot& FileTimeCache::entry(const BString& path) {
  // At most three quarters full, so that a search ends.
  if (4 * (used_ + 1) > 3 * slots_.size()) rehash();
  const std::size_t hash = path.hash();
  Slot& slot = *find(path, hash);
  if (isCurrent(slot)) return slot;
  if (slot.path.isNull()) {
    // Null and empty text are one key, and a key is never null.
    slot.path = path.isNull() ? BString(u"") : path;
    slot.hash = hash;
    ++used_;
  }
  read(slot);
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
  slot.known = Known::Nothing;
  slot.generation = generation_;
  const auto status = (disk_ ? *disk_ : files()).status(slot.path);
  if (!status) {
    slot.known = Known::Missing;
  } else if (const auto time = status->comparableTime()) {
    slot.known = Known::Time;
    slot.time = *time;
  } else {
    slot.known = Known::ExistsWithoutTime;
  }
}

// Makes room: paths that nobody asked for since invalidate() go.
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
