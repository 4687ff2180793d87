#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/files/file_time_cache.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// The file times of a build: each file's is read again only when a tool may have changed it. One for the
// process, since one tool runs at a time; main thread only.
FileTimeCache& fileTimes();

// Drops all that is known and stops watching files: before and after a build, and whenever anything else may
// have changed files.
void forgetFileTimes();

// Drops what a tool that has just ended may have changed.
void fileTimesAfterTool() noexcept;

// A dependency entry as the model stores it, resolved to the full path that it means: one that begins with
// ".\" is relative to the working directory, any other stands as it is.
BString resolveDependency(const BString& entry, const BString& workingDirectory);

// Times of dependency entries. Projects have far fewer entries than mentions of them, and equal entries share
// one text buffer, so each is resolved and looked up once.
class DependencyTimes {
 public:
  // `workingDirectory` of the project that the entries belong to. Times are read through `cache`, which must
  // live as long.
  explicit DependencyTimes(BString workingDirectory = {}, FileTimeCache& cache = fileTimes())
      : workingDirectory_(std::move(workingDirectory)), cache_(&cache) {}

  const BString& workingDirectory() const { return workingDirectory_; }
  FileTimeCache& cache() const { return *cache_; }
  // Nothing when the file can't be opened.
  std::optional<FileTime> modified(const BString& entry);
  // Reads the times of all of these at once.
  void prefetch(const std::vector<BString>& entries) const;

 private:
  struct Slot {
    BString entry;  // held, so that its buffer stays the key
    std::optional<FileTime> time;
    FileTimeCache::Stamp stamp;  // a default one: the slot is free
  };
  Slot& slot(const BString& entry);
  void grow();

  BString workingDirectory_;
  FileTimeCache* cache_;
  std::vector<Slot> slots_;  // open addressing by the entry's buffer; a power of two
  std::size_t used_ = 0;
};

}  // namespace forgeyard
