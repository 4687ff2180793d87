#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "platform/com/object.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard {

// A stream over bytes in memory. Owns them. One thread.
class MemoryBytes : public ComObject<IStream> {
 public:
  explicit MemoryBytes(std::string content = {}) : bytes(std::move(content)) {}

  HRESULT Read(void* out, std::uint32_t count, std::uint32_t* read) override {
    const std::size_t left = position < bytes.size() ? bytes.size() - position : 0;
    const std::size_t given = std::min<std::size_t>(count, left);
    if (given) std::memcpy(out, bytes.data() + position, given);
    position += given;
    if (read) *read = static_cast<std::uint32_t>(given);
    return given == count ? S_OK : S_FALSE;
  }
  HRESULT Write(const void* data, std::uint32_t count, std::uint32_t* written) override {
    if (bytes.size() < position + count) bytes.resize(position + count);
    if (count) std::memcpy(bytes.data() + position, data, count);
    position += count;
    if (written) *written = count;
    return S_OK;
  }
  HRESULT Seek(std::int64_t offset, StreamSeek origin, std::uint64_t* out) override {
    const std::int64_t from = origin == StreamSeek::Set       ? 0
                              : origin == StreamSeek::Current ? static_cast<std::int64_t>(position)
                                                              : static_cast<std::int64_t>(bytes.size());
    if (from + offset < 0) return STG_E_INVALIDFUNCTION;
    position = static_cast<std::size_t>(from + offset);
    if (out) *out = position;
    return S_OK;
  }
  HRESULT SetSize(std::uint64_t size) override {
    bytes.resize(size);
    return S_OK;
  }
  HRESULT Commit(std::uint32_t) override { return S_OK; }
  HRESULT Stat(STATSTG* out) override {
    *out = {};
    out->size = bytes.size();
    return S_OK;
  }

  std::string bytes;
  std::size_t position = 0;
};

}  // namespace forgeyard
