#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/storage/compound_file/byte_runs.h"
#include "platform/storage/disk/host_file.h"
#include "platform/storage/disk/scratch_pages.h"

namespace forgeyard::compound {

// The bytes of one version of a stream: those that lie in a file, overlaid with the pages that were written
// since. A copy shares the pages, so versions are cheap. Failures throw StatusError.
class StreamContent {
 public:
  StreamContent() = default;
  // A stream of a file. Where `runs` has less than `size` bytes the rest is lost, and the stream is damaged.
  StreamContent(SharedFile file, ByteRuns runs, std::uint64_t size);

  // Bytes that can be read. A damaged stream is longer in truth.
  std::uint64_t size() const noexcept { return size_; }
  bool damaged() const noexcept { return damaged_; }

  // Fills `out` from an offset on; the number of bytes, which is less only where the stream ends.
  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> out) const;

  // Puts new bytes in the place of a page, from its start to the end of `bytes`, which is the page's end or
  // the stream's. A stream that ended earlier is filled up with zeros.
  void replacePage(std::uint64_t page, std::vector<std::uint8_t> bytes, ScratchPages& scratch);
  void resize(std::uint64_t size, ScratchPages& scratch);

  // The same bytes, now all at one place in a file.
  void moveTo(SharedFile file, std::uint64_t fileOffset);

 private:
  void readPage(const SharedPage& page, std::size_t offset, std::span<std::uint8_t> out) const;
  void readFile(std::uint64_t offset, std::span<std::uint8_t> out) const;

  std::uint64_t size_ = 0;
  std::uint64_t fileSize_ = 0;  // bytes of the file that still count; zeros follow
  SharedFile file_;
  ByteRuns runs_;
  std::vector<SharedPage> pages_;  // by number; null where the file's bytes stand
  bool damaged_ = false;
};

}  // namespace forgeyard::compound
