#include "platform/storage/compound_file/sector_file.h"

#include <algorithm>
#include <utility>

#include "platform/com/status.h"

namespace forgeyard::compound {

SectorFile::SectorFile(SharedFile file) : file_(std::move(file)), fileSize_(file_->size()) {
  HeaderBytes bytes{};
  if (file_->readAt(0, bytes) != bytes.size()) throw StatusError(STG_E_INVALIDHEADER);
  header_ = decodeHeader(bytes);
  // The header fills the place of one sector.
  const std::uint64_t sectors = (fileSize_ + sectorSize() - 1) / sectorSize();
  sectorCount_ = static_cast<std::uint32_t>(std::clamp<std::uint64_t>(sectors, 1, kMaxRegularSector) - 1);
}

}  // namespace forgeyard::compound
