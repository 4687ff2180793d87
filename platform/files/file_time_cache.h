#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "platform/files/file_system.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// Last write times, each read from the disk once between two tool runs. Keyed by the path's text as it
// stands; asking again with a copy of the same BString costs a few nanoseconds, since its hash is computed
// once and its buffer is compared first. For one thread.
class FileTimeCache {
 public:
  // Reads through `disk`, or through what files() is at each question.
  explicit FileTimeCache(FileSystem* disk = nullptr) : disk_(disk) {}

  // As FileSystem::modified().
  std::optional<FileTime> modified(const BString& path);
  // Whether anything of that name exists, directories included.
  bool exists(const BString& path);

  // Drops all times, and what the disk learnt about directories: after a tool has run.
  void invalidate();
  // Drops one: after this process itself has written or deleted the file.
  void forget(const BString& path);

  std::size_t size() const noexcept { return used_; }

 private:
  enum class Known : unsigned char { Nothing, Time, ExistsWithoutTime, Missing };
  struct Slot {
    BString path;
    std::size_t hash = 0;
    FileTime time = 0;
    Known known = Known::Nothing;
    bool taken = false;
  };

  const Slot& entry(const BString& path);
  std::size_t find(const BString& path, std::size_t hash) const noexcept;
  void read(Slot& slot);
  void grow();

  FileSystem* disk_;
  std::vector<Slot> slots_;  // open addressing, a power of two
  std::size_t used_ = 0;
};

}  // namespace forgeyard
