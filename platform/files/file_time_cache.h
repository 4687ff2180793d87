#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/files/file_change_watch.h"
#include "platform/files/file_system.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// Last write times, each read from the disk once between two tool runs, or once for many of them where a
// FileChangeWatch says that the tools left the file alone. Keyed by the path's text as it stands; asking
// again with a copy of the same BString costs a few nanoseconds, since its hash is computed once and its
// buffer is compared first. For one thread.
class FileTimeCache {
 public:
  // When watching begins: after as many times were read again as cost about what beginning and ending a watch
  // does, so that it at most doubles the cost of a build with few tool runs.
  struct Watching {
    std::size_t afterReads = 8192;
    std::size_t maximumWatches = 0;  // 0: FileChangeWatch::allowance()
    // A file is watched when it is read once more: most files of a build are looked at for one decision only.
    bool fromSecondReading = true;
  };
  // How long an answer holds; a default one never does.
  struct Stamp {
    std::uint64_t value = 0;
    std::uint32_t cell = 0;
  };

  // Reads through `disk`, or through what files() is at each question.
  explicit FileTimeCache(FileSystem* disk = nullptr) : FileTimeCache(disk, Watching()) {}
  FileTimeCache(FileSystem* disk, Watching watching) : disk_(disk), watching_(watching) {}

  // As FileSystem::modified(). The answer stays right as long as isCurrent(stamp).
  std::optional<FileTime> modified(const BString& path) { return answer(entry(path)); }
  std::optional<FileTime> modified(const BString& path, Stamp& stamp);
  bool isCurrent(const Stamp& stamp) const noexcept {
    return stamp.cell < cells_.size() && cells_[stamp.cell] == stamp.value;
  }
  // Whether anything of that name exists, directories included.
  bool exists(const BString& path);

  // Reads the times that aren't known, side by side: for what is going to be asked for anyway.
  void prefetch(std::span<const BString> paths);

  // Drops all times and ends watching: before and after a build.
  void invalidate() noexcept;
  // Drops the times that a tool which has just ended may have changed: all that aren't watched.
  void afterTool() noexcept;
  // Takes the file for one of that time until times are dropped. True if somebody holds a stamp for the time
  // before, which stays as it is.
  bool assume(const BString& path, FileTime time);
  // Drops one: after this process itself has written or deleted the file.
  void forget(const BString& path) noexcept;

 private:
  enum class Known : unsigned char { Nothing, Time, ExistsWithoutTime, Missing };
  struct Slot {
    BString path;  // null: the slot is free
    std::size_t hash = 0;
    FileTime time = 0;
    Stamp stamp;
    // Watches, by number: under which it was read, and under which changes of it would go unseen.
    std::uint32_t readUnder = 0;
    std::uint32_t unwatchable = 0;
    Known known = Known::Nothing;
    bool stampGiven = false;  // since it was read
  };

  static std::optional<FileTime> answer(const Slot& slot) noexcept {
    return slot.known == Known::Time ? std::optional<FileTime>(slot.time) : std::nullopt;
  }
  bool isCurrent(const Slot& slot) const noexcept {
    return slot.known != Known::Nothing && isCurrent(slot.stamp);
  }
  FileSystem& disk() const { return disk_ ? *disk_ : files(); }
  Slot& entry(const BString& path);
  Slot& slotFor(const BString& path);
  Slot* find(const BString& path, std::size_t hash) noexcept;
  void read(Slot& slot);
  static void store(Slot& slot, const std::optional<FileStatus>& status) noexcept;
  void rehash();
  void beginWatching();
  void endWatching() noexcept;
  bool takeChanges();
  // Nothing if the path can't be watched, or need not be yet.
  std::optional<FileChangeWatch::Place> watch(Slot& slot, const FileSystem& read);
  Stamp stampOf(FileChangeWatch::Subject subject);

  FileSystem* disk_;
  Watching watching_;
  std::vector<Slot> slots_;  // open addressing, a power of two
  std::size_t used_ = 0;     // slots with a path, also from before invalidate()

  // What answers hold by: a cell for each subject of the watch, behind one for all that isn't watched. Each
  // gets a new value, never used before, when what it stands for may have changed.
  std::uint64_t lastValue_ = 1;
  std::vector<std::uint64_t> cells_{1};

  std::unique_ptr<FileChangeWatch> watch_;
  const FileSystem* watched_ = nullptr;  // the disk that watch_ sees
  std::uint32_t watchNumber_ = 0;
  bool mayWatch_ = true;       // no watch has come to a limit in this build
  bool toolHasRun_ = false;    // in this build
  std::size_t readAgain_ = 0;  // times, because tools ran
  std::vector<FileChangeWatch::Subject> changes_;
};

}  // namespace forgeyard
