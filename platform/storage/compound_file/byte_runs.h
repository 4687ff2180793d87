#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/storage/disk/host_file.h"

namespace forgeyard::compound {

// Where the bytes of a stream lie in its file: pieces in the stream's order. A value; a stream that lies in
// one piece takes one run.
class ByteRuns {
 public:
  // Joins the last run if it continues there.
  void append(std::uint64_t fileOffset, std::uint64_t length) {
    if (length == 0) return;
    if (runs_.empty() || runs_.back().fileOffset + (size_ - runs_.back().start) != fileOffset) {
      runs_.push_back({size_, fileOffset});
    }
    size_ += length;
  }

  std::uint64_t size() const noexcept { return size_; }

  void truncate(std::uint64_t size) {
    if (size >= size_) return;
    size_ = size;
    while (!runs_.empty() && runs_.back().start >= size_) runs_.pop_back();
  }

  // Calls visit(fileOffset, length) for the pieces of [offset, offset + length), which lies within size().
  template <class Visit>
  void forEach(std::uint64_t offset, std::uint64_t length, Visit&& visit) const {
    const std::uint64_t end = offset + length;
    auto run = std::upper_bound(runs_.begin(), runs_.end(), offset,
                                [](std::uint64_t at, const Run& r) { return at < r.start; });
    while (offset < end) {
      const std::uint64_t runEnd = run == runs_.end() ? size_ : run->start;
      const Run& current = *(run - 1);
      const std::uint64_t pieceEnd = std::min(end, runEnd);
      visit(current.fileOffset + (offset - current.start), pieceEnd - offset);
      offset = pieceEnd;
      ++run;
    }
  }

 private:
  struct Run {
    std::uint64_t start;  // in the stream
    std::uint64_t fileOffset;
  };

  std::vector<Run> runs_;
  std::uint64_t size_ = 0;
};

// Fills `out` with the bytes at an offset of the runs, within their size. Throws StatusError, also for a file
// that has become shorter than its runs: somebody has cut it behind the lock's back.
void readRuns(const HostFile& file, const ByteRuns& runs, std::uint64_t offset, std::span<std::uint8_t> out);

}  // namespace forgeyard::compound
