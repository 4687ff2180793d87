#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/storage/compound_file/compound_format.h"
#include "platform/storage/disk/host_file.h"

namespace forgeyard::compound {

// A compound file as numbered sectors. Throws STG_E_INVALIDHEADER for a file that has no usable header.
class SectorFile {
 public:
  explicit SectorFile(SharedFile file);

  const SharedFile& file() const noexcept { return file_; }
  const Header& header() const noexcept { return header_; }
  std::uint64_t fileSize() const noexcept { return fileSize_; }
  std::uint32_t sectorSize() const noexcept { return std::uint32_t{1} << header_.sectorShift; }
  std::uint32_t entriesPerSector() const noexcept { return sectorSize() / 4; }  // of the tables of successors
  // The last sector may be cut short.
  std::uint32_t sectorCount() const noexcept { return sectorCount_; }
  std::uint64_t offsetOf(std::uint32_t sector) const noexcept {
    return (std::uint64_t{sector} + 1) << header_.sectorShift;
  }
  // Of a piece of the file's length from an offset on, what the file has.
  std::uint64_t available(std::uint64_t offset, std::uint64_t length) const noexcept {
    return offset >= fileSize_ ? 0 : std::min(length, fileSize_ - offset);
  }

 private:
  SharedFile file_;
  std::uint64_t fileSize_ = 0;
  Header header_;
  std::uint32_t sectorCount_ = 0;
};

}  // namespace forgeyard::compound
