#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/storage/structured_storage.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// The element encodings of stored records, all little-endian. A short read or write throws
// StatusError(E_FAIL). Both borrow the stream and move its position by exactly what they read or wrote.

class RecordReader {
 public:
  explicit RecordReader(IStream* stream) : stream_(stream) {}

  std::uint32_t u32();
  std::int32_t i32() { return static_cast<std::int32_t>(u32()); }
  std::uint8_t u8();
  // A 32-bit count of UTF-16 units and the units; never null.
  BString listedString();
  // The same, into a buffer that the caller uses again: valid until the next call with it.
  std::u16string_view listedString(std::u16string& buffer);
  // A 32-bit count of bytes with a terminator among them, the text and the terminator; a count of 0 is null.
  BString cookieString();
  // A count of entries that take `bytesEach` or more: fails at once for more than the stream can hold.
  std::uint32_t count(std::uint32_t bytesEach);

 private:
  void bytes(void* out, std::uint32_t count);
  void requireLeft(std::uint64_t bytes);

  IStream* stream_;
};

class RecordWriter {
 public:
  explicit RecordWriter(IStream* stream) : stream_(stream) {}

  void u32(std::uint32_t value);
  void i32(std::int32_t value) { u32(static_cast<std::uint32_t>(value)); }
  void u8(std::uint8_t value);
  void listedString(std::u16string_view text);
  void cookieString(const BString& text);
  // As they stand.
  void bytes(std::string_view data) { bytes(data.data(), data.size()); }

 private:
  void bytes(const void* data, std::size_t count);

  IStream* stream_;
};

}  // namespace forgeyard
