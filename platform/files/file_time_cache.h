#pragma once

#include <cstddef>
#include <cstdint>
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

  // Drops all times: after a tool has run. Costs the same however many there are.
  void invalidate() noexcept;
  // Drops one: after this process itself has written or deleted the file.
  void forget(const BString& path) noexcept;

 private:
  enum class Known : unsigned char { Nothing, Time, ExistsWithoutTime, Missing };
  struct Slot {
    BString path;  // null: the slot is free
    std::size_t hash = 0;
    FileTime time = 0;
    std::uint32_t generation = 0;
    Known known = Known::Nothing;
  };

  bool isCurrent(const Slot& slot) const noexcept {
    return slot.generation == generation_ && slot.known != Known::Nothing;
  }
  const Slot& entry(const BString& path);
  Slot* find(const BString& path, std::size_t hash) noexcept;
  void read(Slot& slot);
  void rehash();

  FileSystem* disk_;
  std::vector<Slot> slots_;  // open addressing, a power of two
  std::size_t used_ = 0;     // slots with a path, also from before invalidate()
  std::uint32_t generation_ = 1;
};

}  // namespace forgeyard
