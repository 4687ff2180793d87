#include "tests/platform/storage/image_builder.h"

#include <algorithm>
#include <cstring>

namespace forgeyard {
namespace {

constexpr std::uint32_t kEnd = 0xFFFFFFFE;
constexpr std::uint32_t kFree = 0xFFFFFFFF;

class Builder {
 public:
  explicit Builder(const ImageOptions& options)
      : options_(options), size_(std::size_t{1} << options.sectorShift) {}

  std::string build(const std::vector<ImageElement>& root) {
    entries_.emplace_back(128, '\0');
    const std::uint32_t child = addSiblings(root);
    const std::uint32_t mini = addChain(mini_);
    std::string table;
    for (const std::uint32_t next : miniFat_) table += word(next);
    if (!table.empty()) table.resize((table.size() + size_ - 1) / size_ * size_, '\xFF');
    const std::uint32_t miniTable = addChain(table);
    fillEntry(0, u"Root Entry", 5, child, GUID_NULL, mini, mini_.size());
    std::string directory;
    for (const std::string& entry : entries_) directory += entry;
    const std::uint32_t directoryStart = addChain(directory);
    return assemble(directoryStart, miniTable, table.size() / size_);
  }

 private:
  static std::string word(std::uint32_t value) { return {reinterpret_cast<const char*>(&value), 4}; }
  template <class T>
  static void set(std::string& bytes, std::size_t at, T value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
  }

  // Each sibling is the right neighbour of the one before it.
  std::uint32_t addSiblings(const std::vector<ImageElement>& elements) {
    std::uint32_t first = kFree;
    std::uint32_t previous = kFree;
    for (const ImageElement& element : elements) {
      const std::uint32_t id = static_cast<std::uint32_t>(entries_.size());
      entries_.emplace_back(128, '\0');
      const std::uint32_t child = element.storage ? addSiblings(element.children) : kFree;
      const std::uint32_t start = element.storage ? 0 : addStream(element.bytes);
      fillEntry(id, element.name, element.storage ? 1 : 2, child, element.clsid, start, element.bytes.size());
      if (previous == kFree) {
        first = id;
      } else {
        set(entries_[previous], 72, id);
      }
      previous = id;
    }
    return first;
  }

  void fillEntry(std::uint32_t id, const std::u16string& name, char type, std::uint32_t child,
                 const Guid& clsid, std::uint32_t start, std::uint64_t size) {
    std::string& entry = entries_[id];
    std::memcpy(entry.data(), name.data(), 2 * name.size());
    set(entry, 64, static_cast<std::uint16_t>(2 * name.size() + 2));
    entry[66] = type;
    set(entry, 68, kFree);
    set(entry, 72, kFree);
    set(entry, 76, child);
    std::memcpy(entry.data() + 80, &clsid.data1, 4);
    std::memcpy(entry.data() + 84, &clsid.data2, 2);
    std::memcpy(entry.data() + 86, &clsid.data3, 2);
    std::memcpy(entry.data() + 88, clsid.data4.data(), 8);
    set(entry, 116, start);
    set(entry, 120, size);
    // Version 3 has no upper half of the size; old writers left what was there.
    if (options_.sectorShift == 9) set(entry, 124, std::uint32_t{0xDEADBEEF});
  }

  std::uint32_t addStream(const std::string& bytes) {
    if (bytes.empty()) return kEnd;
    if (bytes.size() >= 4096) return addChain(bytes);
    const std::uint32_t first = static_cast<std::uint32_t>(miniFat_.size());
    const std::size_t count = (bytes.size() + 63) / 64;
    for (std::size_t i = 1; i < count; ++i) miniFat_.push_back(first + static_cast<std::uint32_t>(i));
    miniFat_.push_back(kEnd);
    mini_ += bytes;
    mini_.resize(miniFat_.size() * 64);
    return first;
  }

  // Scattered chains run backwards, with a free sector between any two.
  std::uint32_t addChain(const std::string& bytes) {
    const std::size_t count = (bytes.size() + size_ - 1) / size_;
    if (count == 0) return kEnd;
    const std::size_t stride = options_.scattered ? 2 : 1;
    const std::size_t base = sectors_.size();
    sectors_.resize(base + count * stride);
    fat_.resize(sectors_.size(), kFree);
    const auto place = [&](std::size_t i) {
      return static_cast<std::uint32_t>(options_.scattered ? base + (count - 1 - i) * stride : base + i);
    };
    for (std::size_t i = 0; i < count; ++i) {
      sectors_[place(i)] = bytes.substr(i * size_, size_);
      fat_[place(i)] = i + 1 < count ? place(i + 1) : kEnd;
    }
    return place(0);
  }

  std::string assemble(std::uint32_t directory, std::uint32_t miniTable, std::size_t miniTableSectors) {
    const std::size_t perSector = size_ / 4;
    std::size_t fatSectors = 0;
    while (fatSectors * perSector < fat_.size() + fatSectors) ++fatSectors;
    const std::size_t firstFat = sectors_.size();
    for (std::size_t i = 0; i < fatSectors; ++i) fat_.push_back(0xFFFFFFFD);
    fat_.resize(fatSectors * perSector, kFree);
    for (std::size_t i = 0; i < fatSectors; ++i) {
      std::string sector;
      for (std::size_t k = 0; k < perSector; ++k) sector += word(fat_[i * perSector + k]);
      sectors_.push_back(sector);
    }
    std::string file = header(directory, miniTable, miniTableSectors, firstFat, fatSectors);
    for (std::string& sector : sectors_) {
      if (!options_.cutLastSector || &sector != &sectors_.back()) sector.resize(size_);
      file += sector;
    }
    return file;
  }

  std::string header(std::uint32_t directory, std::uint32_t miniTable, std::size_t miniTableSectors,
                     std::size_t firstFat, std::size_t fatSectors) {
    std::string bytes(size_, '\0');
    std::memcpy(bytes.data(), "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    set(bytes, 24, std::uint16_t{0x21});  // some other minor version
    set(bytes, 26, static_cast<std::uint16_t>(options_.sectorShift == 9 ? 3 : 4));
    set(bytes, 28, std::uint16_t{0xFFFE});
    set(bytes, 30, static_cast<std::uint16_t>(options_.sectorShift));
    set(bytes, 32, std::uint16_t{6});
    set(bytes, 44, static_cast<std::uint32_t>(fatSectors));
    set(bytes, 48, directory);
    set(bytes, 52, std::uint32_t{77});  // a count of transactions
    set(bytes, 56, std::uint32_t{4096});
    set(bytes, 60, miniTable);
    set(bytes, 64, static_cast<std::uint32_t>(miniTableSectors));
    set(bytes, 68, kEnd);
    for (std::size_t i = 0; i < 109; ++i) {
      set(bytes, 76 + 4 * i, i < fatSectors ? static_cast<std::uint32_t>(firstFat + i) : kFree);
    }
    return bytes;
  }

  const ImageOptions options_;
  const std::size_t size_;
  std::vector<std::string> entries_;
  std::vector<std::string> sectors_;
  std::vector<std::uint32_t> fat_;
  std::string mini_;
  std::vector<std::uint32_t> miniFat_;
};

}  // namespace

std::string buildImage(const std::vector<ImageElement>& root, const ImageOptions& options) {
  return Builder(options).build(root);
}

}  // namespace forgeyard
