#pragma once

#include "platform/storage/disk/memory_bytes.h"

namespace forgeyard {

// A stream over bytes in memory, which a test can make misbehave.
class MemoryStream final : public MemoryBytes {
 public:
  using MemoryBytes::MemoryBytes;

  HRESULT Read(void* out, std::uint32_t count, std::uint32_t* read) override {
    if (failed(readStatus)) return readStatus;
    mostAsked = std::max(mostAsked, count);
    return MemoryBytes::Read(out, count, read);
  }
  HRESULT Write(const void* data, std::uint32_t count, std::uint32_t* written) override {
    if (failed(writeStatus)) return writeStatus;
    const std::size_t left = room - std::min(room, position);
    return MemoryBytes::Write(data, static_cast<std::uint32_t>(std::min<std::size_t>(count, left)), written);
  }

  std::size_t room = SIZE_MAX;  // where the medium is full
  HRESULT readStatus = S_OK;
  HRESULT writeStatus = S_OK;
  std::uint32_t mostAsked = 0;  // by one read
};

}  // namespace forgeyard
