#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/storage/compound_file/compound_format.h"
#include "platform/storage/compound_file/sibling_tree.h"
#include "platform/storage/storage_tree.h"

namespace forgeyard::compound {

// Where everything of a storage tree goes in a file of version 3: tables first, then each stream in one
// piece, in the order of the directory. The same tree always gives the same layout. It borrows the tree,
// which must not change as long as the layout is used. Throws STG_E_MEDIUMFULL for what the version can't
// hold.
class CompoundLayout {
 public:
  static constexpr std::uint32_t kSectorSize = 512;
  // Readers of version 3 may keep offsets in 31 bits.
  static constexpr std::uint64_t kMaxFileSize = 0x7FFFFE00;

  struct Entry {
    std::u16string_view name;
    const StorageTree* storage = nullptr;
    StreamContent* stream = nullptr;
    SiblingLinks links;
    std::uint32_t child = kNoEntry;
    std::uint32_t start = 0;  // sector, or mini sector of a short stream
  };
  // A row of sectors; a chain unless it is a table's.
  struct Extent {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    std::uint32_t start() const noexcept { return count == 0 ? kEndOfChain : first; }
  };

  explicit CompoundLayout(const StorageTree& root);

  std::uint64_t fileSize() const noexcept { return offsetOf(sectorCount_); }
  std::uint32_t sectorCount() const noexcept { return sectorCount_; }
  // The first entry is the root's.
  const std::vector<Entry>& entries() const noexcept { return entries_; }
  // The streams in the order in which they lie in the file.
  const std::vector<std::uint32_t>& longStreams() const noexcept { return longStreams_; }
  const std::vector<std::uint32_t>& shortStreams() const noexcept { return shortStreams_; }
  Extent fat() const noexcept { return fat_; }
  Extent difat() const noexcept { return difat_; }
  Extent directory() const noexcept { return directory_; }
  Extent miniFat() const noexcept { return miniFat_; }
  Extent miniStream() const noexcept { return miniStream_; }
  std::uint32_t miniSectors() const noexcept { return miniSectors_; }

  // Where a stream's bytes begin in the file.
  std::uint64_t offsetOf(const Entry& stream) const noexcept;
  static std::uint64_t offsetOf(std::uint32_t sector) noexcept {
    return (std::uint64_t{sector} + 1) * kSectorSize;
  }

 private:
  void collectEntries(const StorageTree& root);
  void placeShortStreams();
  void placeTables();
  void placeLongStreams();

  std::vector<Entry> entries_;
  std::vector<std::uint32_t> longStreams_;
  std::vector<std::uint32_t> shortStreams_;
  Extent fat_;
  Extent difat_;
  Extent directory_;
  Extent miniFat_;
  Extent miniStream_;
  std::uint32_t miniSectors_ = 0;
  std::uint32_t sectorCount_ = 0;
  std::uint32_t streamSectors_ = 0;
};

}  // namespace forgeyard::compound
