#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/com/object.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::test {

// A stored record spelled out value by value.
class RecordBytes {
 public:
  RecordBytes& number(std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes_ += static_cast<char>(value >> shift & 0xFF);
    return *this;
  }
  RecordBytes& text(std::u16string_view value) {
    number(static_cast<std::uint32_t>(value.size()));
    for (const char16_t unit : value) {
      bytes_ += static_cast<char>(unit & 0xFF);
      bytes_ += static_cast<char>(unit >> 8);
    }
    return *this;
  }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

// A stream over bytes in memory.
class MemoryStream final : public ComObject<IStream> {
 public:
  explicit MemoryStream(std::string bytes = {}) : bytes_(std::move(bytes)) {}

  const std::string& bytes() const { return bytes_; }
  std::size_t position() const { return position_; }
  // Writes beyond that size come up short.
  void limitTo(std::size_t bytes) { limit_ = bytes; }

  HRESULT Read(void* bytes, std::uint32_t count, std::uint32_t* read) override {
    const std::size_t given = std::min<std::size_t>(count, bytes_.size() - position_);
    std::memcpy(bytes, bytes_.data() + position_, given);
    position_ += given;
    if (read) *read = static_cast<std::uint32_t>(given);
    return S_OK;
  }
  HRESULT Write(const void* bytes, std::uint32_t count, std::uint32_t* written) override {
    const std::size_t taken = std::min<std::size_t>(count, limit_ - position_);
    bytes_.replace(position_, taken, static_cast<const char*>(bytes), taken);
    position_ += taken;
    if (written) *written = static_cast<std::uint32_t>(taken);
    return S_OK;
  }
  HRESULT Seek(std::int64_t offset, StreamSeek origin, std::uint64_t* position) override {
    const std::size_t base = origin == StreamSeek::Set       ? 0
                             : origin == StreamSeek::Current ? position_
                                                             : bytes_.size();
    position_ = base + static_cast<std::size_t>(offset);
    if (position) *position = position_;
    return S_OK;
  }
  HRESULT SetSize(std::uint64_t bytes) override {
    bytes_.resize(bytes);
    return S_OK;
  }
  HRESULT Commit(std::uint32_t) override { return S_OK; }
  HRESULT Stat(STATSTG* out) override {
    out->size = bytes_.size();
    return S_OK;
  }

 private:
  std::string bytes_;
  std::size_t position_ = 0;
  std::size_t limit_ = std::string::npos;
};

}  // namespace forgeyard::test
