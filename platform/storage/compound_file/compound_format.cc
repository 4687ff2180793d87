#include "platform/storage/compound_file/compound_format.h"

#include <algorithm>

#include "platform/com/status.h"
#include "platform/storage/compound_file/little_endian.h"

namespace forgeyard::compound {
namespace {

constexpr std::array<std::uint8_t, 8> kSignature = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr std::uint16_t kMinorVersion = 0x3E;
constexpr std::uint16_t kByteOrder = 0xFFFE;
constexpr std::uint16_t kMiniSectorShift = 6;

// Where the fields of the two records lie.
namespace header_at {
constexpr std::size_t kMinor = 24;
constexpr std::size_t kMajor = 26;
constexpr std::size_t kOrder = 28;
constexpr std::size_t kShift = 30;
constexpr std::size_t kMiniShift = 32;
constexpr std::size_t kDirectorySectors = 40;
constexpr std::size_t kFatSectors = 44;
constexpr std::size_t kFirstDirectory = 48;
constexpr std::size_t kCutoff = 56;
constexpr std::size_t kFirstMiniFat = 60;
constexpr std::size_t kMiniFatSectors = 64;
constexpr std::size_t kFirstDifat = 68;
constexpr std::size_t kDifatSectors = 72;
constexpr std::size_t kFat = 76;
}  // namespace header_at

namespace entry_at {
constexpr std::size_t kNameBytes = 64;
constexpr std::size_t kType = 66;
constexpr std::size_t kColour = 67;
constexpr std::size_t kLeft = 68;
constexpr std::size_t kRight = 72;
constexpr std::size_t kChild = 76;
constexpr std::size_t kClsid = 80;
constexpr std::size_t kStateBits = 96;
constexpr std::size_t kCreated = 100;
constexpr std::size_t kModified = 108;
constexpr std::size_t kStart = 116;
constexpr std::size_t kSize = 120;
}  // namespace entry_at

Guid decodeGuid(const std::uint8_t* at) noexcept {
  Guid guid;
  guid.data1 = loadLittle<std::uint32_t>(at);
  guid.data2 = loadLittle<std::uint16_t>(at + 4);
  guid.data3 = loadLittle<std::uint16_t>(at + 6);
  std::copy_n(at + 8, guid.data4.size(), guid.data4.begin());
  return guid;
}

void encodeGuid(const Guid& guid, std::uint8_t* at) noexcept {
  storeLittle(at, guid.data1);
  storeLittle(at + 4, guid.data2);
  storeLittle(at + 6, guid.data3);
  std::copy(guid.data4.begin(), guid.data4.end(), at + 8);
}

}  // namespace

Header decodeHeader(const HeaderBytes& bytes) {
  const std::uint8_t* at = bytes.data();
  Header header;
  header.majorVersion = loadLittle<std::uint16_t>(at + header_at::kMajor);
  header.sectorShift = loadLittle<std::uint16_t>(at + header_at::kShift);
  const bool known = std::equal(kSignature.begin(), kSignature.end(), at) &&
                     loadLittle<std::uint16_t>(at + header_at::kOrder) == kByteOrder &&
                     loadLittle<std::uint16_t>(at + header_at::kMiniShift) == kMiniSectorShift &&
                     loadLittle<std::uint32_t>(at + header_at::kCutoff) == kMiniCutoff &&
                     ((header.majorVersion == 3 && header.sectorShift == 9) ||
                      (header.majorVersion == 4 && header.sectorShift == 12));
  if (!known) throw StatusError(STG_E_INVALIDHEADER);
  header.directorySectors = loadLittle<std::uint32_t>(at + header_at::kDirectorySectors);
  header.fatSectors = loadLittle<std::uint32_t>(at + header_at::kFatSectors);
  header.firstDirectorySector = loadLittle<std::uint32_t>(at + header_at::kFirstDirectory);
  header.firstMiniFatSector = loadLittle<std::uint32_t>(at + header_at::kFirstMiniFat);
  header.miniFatSectors = loadLittle<std::uint32_t>(at + header_at::kMiniFatSectors);
  header.firstDifatSector = loadLittle<std::uint32_t>(at + header_at::kFirstDifat);
  header.difatSectors = loadLittle<std::uint32_t>(at + header_at::kDifatSectors);
  for (std::size_t i = 0; i < header.fat.size(); ++i) {
    header.fat[i] = loadLittle<std::uint32_t>(at + header_at::kFat + 4 * i);
  }
  return header;
}

HeaderBytes encodeHeader(const Header& header) {
  HeaderBytes bytes{};
  std::uint8_t* at = bytes.data();
  std::copy(kSignature.begin(), kSignature.end(), at);
  storeLittle(at + header_at::kMinor, kMinorVersion);
  storeLittle(at + header_at::kMajor, header.majorVersion);
  storeLittle(at + header_at::kOrder, kByteOrder);
  storeLittle(at + header_at::kShift, header.sectorShift);
  storeLittle(at + header_at::kMiniShift, kMiniSectorShift);
  storeLittle(at + header_at::kDirectorySectors, header.directorySectors);
  storeLittle(at + header_at::kFatSectors, header.fatSectors);
  storeLittle(at + header_at::kFirstDirectory, header.firstDirectorySector);
  storeLittle(at + header_at::kCutoff, kMiniCutoff);
  storeLittle(at + header_at::kFirstMiniFat, header.firstMiniFatSector);
  storeLittle(at + header_at::kMiniFatSectors, header.miniFatSectors);
  storeLittle(at + header_at::kFirstDifat, header.firstDifatSector);
  storeLittle(at + header_at::kDifatSectors, header.difatSectors);
  for (std::size_t i = 0; i < header.fat.size(); ++i)
    storeLittle(at + header_at::kFat + 4 * i, header.fat[i]);
  return bytes;
}

void DirectoryEntry::setName(std::u16string_view name) noexcept {
  nameUnits = {};
  nameLength = static_cast<std::uint8_t>(name.copy(nameUnits.data(), nameUnits.size()));
}

DirectoryEntry decodeEntry(std::span<const std::uint8_t, kEntrySize> bytes) noexcept {
  const std::uint8_t* at = bytes.data();
  DirectoryEntry entry;
  // The text ends at its terminator whatever the stored length says: one of the two may be damaged.
  while (entry.nameLength < kMaxNameUnits) {
    const char16_t unit = loadLittle<std::uint16_t>(at + 2 * std::size_t{entry.nameLength});
    if (unit == 0) break;
    entry.nameUnits[entry.nameLength++] = unit;
  }
  entry.nameDamaged = loadLittle<std::uint16_t>(at + entry_at::kNameBytes) != 2 * (entry.nameLength + 1);
  entry.type = static_cast<EntryType>(at[entry_at::kType]);
  entry.black = at[entry_at::kColour] != 0;
  entry.left = loadLittle<std::uint32_t>(at + entry_at::kLeft);
  entry.right = loadLittle<std::uint32_t>(at + entry_at::kRight);
  entry.child = loadLittle<std::uint32_t>(at + entry_at::kChild);
  entry.clsid = decodeGuid(at + entry_at::kClsid);
  entry.stateBits = loadLittle<std::uint32_t>(at + entry_at::kStateBits);
  entry.created = loadLittle<std::uint64_t>(at + entry_at::kCreated);
  entry.modified = loadLittle<std::uint64_t>(at + entry_at::kModified);
  entry.start = loadLittle<std::uint32_t>(at + entry_at::kStart);
  entry.size = loadLittle<std::uint64_t>(at + entry_at::kSize);
  return entry;
}

void encodeEntry(const DirectoryEntry& entry, EntryBytes out) noexcept {
  std::uint8_t* at = out.data();
  std::fill(out.begin(), out.end(), std::uint8_t{0});
  for (std::size_t i = 0; i < entry.nameLength; ++i) {
    storeLittle(at + 2 * i, static_cast<std::uint16_t>(entry.nameUnits[i]));
  }
  const std::size_t nameBytes = entry.type == EntryType::Free ? 0 : 2 * (std::size_t{entry.nameLength} + 1);
  storeLittle(at + entry_at::kNameBytes, static_cast<std::uint16_t>(nameBytes));
  at[entry_at::kType] = static_cast<std::uint8_t>(entry.type);
  at[entry_at::kColour] = entry.black && entry.type != EntryType::Free ? 1 : 0;
  storeLittle(at + entry_at::kLeft, entry.left);
  storeLittle(at + entry_at::kRight, entry.right);
  storeLittle(at + entry_at::kChild, entry.child);
  encodeGuid(entry.clsid, at + entry_at::kClsid);
  storeLittle(at + entry_at::kStateBits, entry.stateBits);
  storeLittle(at + entry_at::kCreated, entry.created);
  storeLittle(at + entry_at::kModified, entry.modified);
  storeLittle(at + entry_at::kStart, entry.start);
  storeLittle(at + entry_at::kSize, entry.size);
}

}  // namespace forgeyard::compound
