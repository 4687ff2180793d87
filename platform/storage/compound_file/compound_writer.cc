#include "platform/storage/compound_file/compound_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "platform/com/status.h"
#include "platform/storage/compound_file/little_endian.h"

namespace forgeyard::compound {
namespace {

// Collects what is written one after the other into large writes.
class ChunkWriter {
 public:
  explicit ChunkWriter(HostFile& file) : file_(file), buffer_(kChunk) {}

  void put(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
      const std::span<std::uint8_t> room = space(bytes.size());
      std::copy_n(bytes.begin(), room.size(), room.begin());
      bytes = bytes.subspan(room.size());
    }
  }
  void put(std::uint32_t value) {
    std::array<std::uint8_t, 4> bytes;
    storeLittle(bytes.data(), value);
    put(bytes);
  }
  // The whole of a stream, read straight into the buffer.
  void put(const StreamContent& stream) {
    for (std::uint64_t offset = 0; offset < stream.size();) {
      const std::span<std::uint8_t> room = space(stream.size() - offset);
      if (stream.read(offset, room) != room.size()) throw StatusError(STG_E_READFAULT);
      offset += room.size();
    }
  }
  void pad(std::uint64_t unit, std::uint8_t filler = 0) {
    while (written() % unit != 0) space(1).front() = filler;
  }
  std::uint64_t written() const noexcept { return flushed_ + used_; }
  void flush() {
    file_.writeAt(flushed_, std::span(buffer_).first(used_));
    flushed_ += used_;
    used_ = 0;
  }

 private:
  static constexpr std::size_t kChunk = std::size_t{512} << 10;

  // The next bytes of the buffer to be filled: at least one, at most `wanted`.
  std::span<std::uint8_t> space(std::uint64_t wanted) {
    if (used_ == buffer_.size()) flush();
    const std::size_t count =
        static_cast<std::size_t>(std::min<std::uint64_t>(wanted, buffer_.size() - used_));
    used_ += count;
    return std::span(buffer_).subspan(used_ - count, count);
  }

  HostFile& file_;
  std::vector<std::uint8_t> buffer_;
  std::size_t used_ = 0;
  std::uint64_t flushed_ = 0;
};

class CompoundWriter {
 public:
  CompoundWriter(const CompoundLayout& layout, HostFile& file) : layout_(layout), out_(file) {}

  void write() {
    writeHeader();
    writeFat();
    writeDifat();
    writeDirectory();
    writeMiniFat();
    for (const std::uint32_t id : layout_.shortStreams()) writeStream(id, kMiniSectorSize);
    out_.pad(CompoundLayout::kSectorSize);
    for (const std::uint32_t id : layout_.longStreams()) writeStream(id, CompoundLayout::kSectorSize);
    out_.flush();
  }

 private:
  static constexpr std::uint32_t kEntriesPerSector = CompoundLayout::kSectorSize / 4;

  // The number of the FAT sector that stands at a place of their list, if there is one.
  std::uint32_t fatSector(std::uint32_t place) const noexcept {
    return place < layout_.fat().count ? layout_.fat().first + place : kFreeSector;
  }

  void writeHeader() {
    Header header;
    header.fatSectors = layout_.fat().count;
    header.firstDirectorySector = layout_.directory().start();
    header.firstMiniFatSector = layout_.miniFat().start();
    header.miniFatSectors = layout_.miniFat().count;
    header.firstDifatSector = layout_.difat().start();
    header.difatSectors = layout_.difat().count;
    for (std::uint32_t i = 0; i < header.fat.size(); ++i) header.fat[i] = fatSector(i);
    out_.put(encodeHeader(header));
  }

  void putChain(std::uint32_t first, std::uint32_t count) {
    for (std::uint32_t i = 1; i < count; ++i) out_.put(first + i);
    if (count > 0) out_.put(kEndOfChain);
  }
  void putChain(CompoundLayout::Extent extent) { putChain(extent.first, extent.count); }

  static std::uint32_t unitsOf(const CompoundLayout::Entry& stream, std::uint32_t unit) {
    return static_cast<std::uint32_t>((stream.stream->size() + unit - 1) / unit);
  }

  void writeFat() {
    for (std::uint32_t i = 0; i < layout_.fat().count; ++i) out_.put(kFatSector);
    for (std::uint32_t i = 0; i < layout_.difat().count; ++i) out_.put(kDifatSector);
    putChain(layout_.directory());
    putChain(layout_.miniFat());
    putChain(layout_.miniStream());
    for (const std::uint32_t id : layout_.longStreams()) {
      const CompoundLayout::Entry& entry = layout_.entries()[id];
      putChain(entry.start, unitsOf(entry, CompoundLayout::kSectorSize));
    }
    out_.pad(CompoundLayout::kSectorSize, 0xFF);  // kFreeSector
  }

  void writeDifat() {
    const CompoundLayout::Extent difat = layout_.difat();
    std::uint32_t place = kHeaderFatSectors;
    for (std::uint32_t i = 0; i < difat.count; ++i) {
      for (std::uint32_t k = 0; k + 1 < kEntriesPerSector; ++k) out_.put(fatSector(place++));
      out_.put(i + 1 < difat.count ? difat.first + i + 1 : kEndOfChain);
    }
  }

  void writeDirectory() {
    for (const CompoundLayout::Entry& entry : layout_.entries()) putEntry(toStored(entry));
    while (out_.written() % CompoundLayout::kSectorSize != 0) putEntry(DirectoryEntry());
  }

  DirectoryEntry toStored(const CompoundLayout::Entry& entry) const {
    DirectoryEntry stored;
    stored.setName(entry.name);
    stored.left = entry.links.left;
    stored.right = entry.links.right;
    stored.black = entry.links.black;
    stored.child = entry.child;
    stored.start = entry.start;
    if (entry.stream) {
      stored.type = EntryType::Stream;
      stored.size = entry.stream->size();
    } else {
      stored.type = EntryType::Storage;
      stored.clsid = entry.storage->clsid;
      stored.stateBits = entry.storage->stateBits;
      stored.created = entry.storage->created;
      stored.modified = entry.storage->modified;
    }
    if (&entry == layout_.entries().data()) {
      stored.type = EntryType::Root;
      stored.size = std::uint64_t{layout_.miniSectors()} * kMiniSectorSize;
    }
    return stored;
  }

  void putEntry(const DirectoryEntry& entry) {
    std::array<std::uint8_t, kEntrySize> bytes;
    encodeEntry(entry, bytes);
    out_.put(bytes);
  }

  void writeMiniFat() {
    for (const std::uint32_t id : layout_.shortStreams()) {
      const CompoundLayout::Entry& entry = layout_.entries()[id];
      putChain(entry.start, unitsOf(entry, kMiniSectorSize));
    }
    out_.pad(CompoundLayout::kSectorSize, 0xFF);
  }

  void writeStream(std::uint32_t id, std::uint32_t unit) {
    out_.put(*layout_.entries()[id].stream);
    out_.pad(unit);
  }

  const CompoundLayout& layout_;
  ChunkWriter out_;
};

}  // namespace

void writeCompoundFile(const CompoundLayout& layout, HostFile& file) {
  HostFile::requireAllowedSize(layout.fileSize());
  CompoundWriter(layout, file).write();
}

void moveStreams(const CompoundLayout& layout, const SharedFile& file) {
  for (const CompoundLayout::Entry& entry : layout.entries()) {
    if (entry.stream) entry.stream->moveTo(file, layout.offsetOf(entry));
  }
}

}  // namespace forgeyard::compound
