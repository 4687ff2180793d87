#include "platform/storage/records/records.h"

#include <bit>

namespace forgeyard {

static_assert(std::endian::native == std::endian::little,
              "records are read and written as they lie in memory");

namespace {

// Longer texts are checked against what the stream has left before anything is allocated for them.
constexpr std::uint32_t kTrustedUnits = 2048;

}  // namespace

void RecordReader::bytes(void* out, std::uint32_t count) {
  std::uint32_t read = 0;
  check(stream_->Read(out, count, &read));
  if (read != count) throw StatusError(E_FAIL);
}

void RecordReader::requireLeft(std::uint64_t bytes) {
  STATSTG stat;
  std::uint64_t position = 0;
  check(stream_->Stat(&stat));
  check(stream_->Seek(0, StreamSeek::Current, &position));
  if (position > stat.size || bytes > stat.size - position) throw StatusError(E_FAIL);
}

std::uint32_t RecordReader::u32() {
  std::uint32_t value = 0;
  bytes(&value, sizeof value);
  return value;
}

std::uint8_t RecordReader::u8() {
  std::uint8_t value = 0;
  bytes(&value, sizeof value);
  return value;
}

std::u16string_view RecordReader::listedString(std::u16string& buffer) {
  const std::uint32_t units = u32();
  if (units > kTrustedUnits) requireLeft(std::uint64_t{units} * sizeof(char16_t));
  if (units > UINT32_MAX / sizeof(char16_t)) throw StatusError(E_FAIL);
  if (buffer.size() < units) buffer.resize(units);
  if (units) bytes(buffer.data(), units * static_cast<std::uint32_t>(sizeof(char16_t)));
  return {buffer.data(), units};
}

BString RecordReader::listedString() {
  std::u16string buffer;
  return listedString(buffer);
}

BString RecordReader::cookieString() {
  const std::uint32_t size = u32();
  if (size == 0) return {};
  if (size > kTrustedUnits) requireLeft(size);
  std::u16string text((std::size_t{size} + 1) / sizeof(char16_t), u'\0');
  bytes(text.data(), size);
  // What is counted ends in a terminator; a damaged record may have none, or stop within a unit.
  text.resize(size / sizeof(char16_t));
  if (!text.empty() && text.back() == u'\0') text.pop_back();
  return text;
}

std::uint32_t RecordReader::count(std::uint32_t bytesEach) {
  const std::uint32_t entries = u32();
  requireLeft(std::uint64_t{entries} * bytesEach);
  return entries;
}

void RecordWriter::bytes(const void* data, std::size_t count) {
  if (count > UINT32_MAX) throw StatusError(E_FAIL);
  std::uint32_t written = 0;
  check(stream_->Write(data, static_cast<std::uint32_t>(count), &written));
  if (written != count) throw StatusError(E_FAIL);
}

void RecordWriter::u32(std::uint32_t value) {
  bytes(&value, sizeof value);
}

void RecordWriter::u8(std::uint8_t value) {
  bytes(&value, sizeof value);
}

void RecordWriter::listedString(std::u16string_view text) {
  u32(static_cast<std::uint32_t>(text.size()));
  if (!text.empty()) bytes(text.data(), text.size() * sizeof(char16_t));
}

void RecordWriter::cookieString(const BString& text) {
  if (text.isNull()) return u32(0);
  u32(static_cast<std::uint32_t>((text.size() + 1) * sizeof(char16_t)));
  if (!text.empty()) bytes(text.view().data(), text.size() * sizeof(char16_t));
  constexpr char16_t terminator = 0;
  bytes(&terminator, sizeof terminator);
}

}  // namespace forgeyard
