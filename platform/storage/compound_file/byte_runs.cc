#include "platform/storage/compound_file/byte_runs.h"

#include "platform/com/status.h"

namespace forgeyard::compound {

void readRuns(const HostFile& file, const ByteRuns& runs, std::uint64_t offset, std::span<std::uint8_t> out) {
  std::uint8_t* to = out.data();
  runs.forEach(offset, out.size(), [&](std::uint64_t fileOffset, std::uint64_t length) {
    const std::span<std::uint8_t> piece(to, static_cast<std::size_t>(length));
    if (file.readAt(fileOffset, piece) != piece.size()) throw StatusError(STG_E_READFAULT);
    to += length;
  });
}

}  // namespace forgeyard::compound
