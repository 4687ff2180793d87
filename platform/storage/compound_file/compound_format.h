#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/com/guid.h"

namespace forgeyard::compound {

// The numbers and the two fixed records of the compound file format. A file is a header and then sectors of
// one size; tables of successors (the FAT, and the mini FAT for short streams) chain them to streams; a
// directory of 128-byte entries names the streams and storages.

inline constexpr std::size_t kHeaderSize = 512;
inline constexpr std::size_t kHeaderFatSectors = 109;  // FAT sectors that the header itself lists
inline constexpr std::size_t kEntrySize = 128;
inline constexpr std::uint32_t kMiniSectorSize = 64;
inline constexpr std::uint32_t kMiniCutoff = 4096;  // shorter streams lie in mini sectors
inline constexpr std::size_t kMaxNameUnits = 31;

// Values of a FAT entry that are no successor.
inline constexpr std::uint32_t kMaxRegularSector = 0xFFFFFFFA;
inline constexpr std::uint32_t kDifatSector = 0xFFFFFFFC;
inline constexpr std::uint32_t kFatSector = 0xFFFFFFFD;
inline constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr std::uint32_t kFreeSector = 0xFFFFFFFF;
inline constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;  // no sibling, no child

struct Header {
  std::uint16_t majorVersion = 3;
  std::uint16_t sectorShift = 9;
  std::uint32_t directorySectors = 0;  // version 4 only
  std::uint32_t fatSectors = 0;
  std::uint32_t firstDirectorySector = kEndOfChain;
  std::uint32_t firstMiniFatSector = kEndOfChain;
  std::uint32_t miniFatSectors = 0;
  std::uint32_t firstDifatSector = kEndOfChain;
  std::uint32_t difatSectors = 0;
  std::array<std::uint32_t, kHeaderFatSectors> fat{};
};

using HeaderBytes = std::array<std::uint8_t, kHeaderSize>;

// Throws STG_E_INVALIDHEADER for bytes that are no compound file or of a kind that can't be read. Counts and
// sector numbers come as they stand; the reader that follows them checks them.
Header decodeHeader(const HeaderBytes& bytes);
HeaderBytes encodeHeader(const Header& header);

enum class EntryType : std::uint8_t { Free = 0, Storage = 1, Stream = 2, Root = 5 };

struct DirectoryEntry {
  std::array<char16_t, kMaxNameUnits> nameUnits{};
  std::uint8_t nameLength = 0;
  bool nameDamaged = false;  // the stored length doesn't fit the text
  EntryType type = EntryType::Free;
  bool black = true;
  std::uint32_t left = kNoEntry;
  std::uint32_t right = kNoEntry;
  std::uint32_t child = kNoEntry;
  Guid clsid{};
  std::uint32_t stateBits = 0;
  std::uint64_t created = 0;
  std::uint64_t modified = 0;
  std::uint32_t start = 0;
  std::uint64_t size = 0;

  std::u16string_view name() const noexcept { return {nameUnits.data(), nameLength}; }
  void setName(std::u16string_view name) noexcept;  // at most kMaxNameUnits
};

using EntryBytes = std::span<std::uint8_t, kEntrySize>;

DirectoryEntry decodeEntry(std::span<const std::uint8_t, kEntrySize> bytes) noexcept;
void encodeEntry(const DirectoryEntry& entry, EntryBytes out) noexcept;

}  // namespace forgeyard::compound
