#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "platform/storage/disk/file_place.h"
#include "platform/storage/disk/host_file.h"

namespace forgeyard::compound {

// Streams are buffered and changed by pages of this many bytes.
inline constexpr std::size_t kPageSize = std::size_t{64} << 10;

class ScratchPages;

// Some bytes that a stream holds uncommitted. Never changes, so that versions of a stream share it.
class ScratchPage {
 public:
  ScratchPage(std::shared_ptr<ScratchPages> home, std::vector<std::uint8_t> bytes);
  ~ScratchPage();
  ScratchPage(const ScratchPage&) = delete;
  ScratchPage& operator=(const ScratchPage&) = delete;

  std::size_t size() const noexcept { return size_; }
  // The bytes at an offset; they lie within size().
  void read(std::size_t offset, std::span<std::uint8_t> out) const;

 private:
  std::shared_ptr<ScratchPages> home_;
  std::size_t size_;
  std::optional<std::uint64_t> fileOffset_;  // of a page in the file
  std::vector<std::uint8_t> bytes_;          // of a page in memory
};

using SharedPage = std::shared_ptr<const ScratchPage>;

// Where the uncommitted pages of one project file live: in memory up to a few megabytes, beyond that in a
// file without a name beside it. When that file can't be had or is full, memory takes them. Any thread.
class ScratchPages : public std::enable_shared_from_this<ScratchPages> {
 public:
  static constexpr std::size_t kMemoryLimit = std::size_t{4} << 20;

  explicit ScratchPages(FilePlace beside) : place_(std::move(beside)) {}

  // At most kPageSize bytes.
  SharedPage store(std::vector<std::uint8_t> bytes);

 private:
  friend class ScratchPage;

  // Writes the bytes into the file if memory is used up, and tells where; else counts them as kept in memory.
  std::optional<std::uint64_t> place(std::span<const std::uint8_t> bytes);
  std::optional<std::uint64_t> writeOut(std::span<const std::uint8_t> bytes);
  void release(std::size_t size, std::optional<std::uint64_t> fileOffset) noexcept;

  FilePlace place_;
  std::mutex mutex_;
  std::size_t inMemory_ = 0;  // bytes
  SharedFile file_;           // once made it stays
  bool fileFailed_ = false;
  std::size_t pagesInFile_ = 0;
  std::uint64_t fileEnd_ = 0;
  std::vector<std::uint64_t> freeSlots_;  // offsets of whole pages in the file
};

}  // namespace forgeyard::compound
