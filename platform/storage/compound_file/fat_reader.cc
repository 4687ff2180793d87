#include "platform/storage/compound_file/fat_reader.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <unordered_set>

#include "platform/storage/compound_file/byte_runs.h"
#include "platform/storage/compound_file/little_endian.h"

namespace forgeyard::compound {
namespace {

// Collects the numbers of the FAT sectors: those in the header, and then those in the chain of DIFAT sectors.
class FatSectorList {
 public:
  FatSectorList(const SectorFile& file, DamageList& damage) : file_(file), damage_(damage) {
    const std::uint64_t entries = file.entriesPerSector();
    needed_ = (file.sectorCount() + entries - 1) / entries;
    for (const std::uint32_t sector : file.header().fat) add(sector);
    readChain();
    // Unused places at the end stand for nothing.
    while (!fat_.empty() && fat_.back() >= file_.sectorCount()) fat_.pop_back();
  }

  const std::vector<std::uint32_t>& fatSectors() const noexcept { return fat_; }
  const std::unordered_set<std::uint32_t>& difatSectors() const noexcept { return difat_; }

 private:
  bool complete() const noexcept { return fat_.size() >= needed_; }

  void add(std::uint32_t sector) {
    if (!complete()) fat_.push_back(sector);
  }

  void readChain() {
    std::vector<std::uint8_t> bytes(file_.sectorSize());
    std::uint32_t sector = file_.header().firstDifatSector;
    while (!complete() && sector < file_.sectorCount()) {
      if (!difat_.insert(sector).second) {
        damage_.add("The list of FAT sectors runs in a circle.");
        return;
      }
      bytes.resize(file_.file()->readAt(file_.offsetOf(sector), bytes));
      const std::size_t entries = bytes.size() / 4;
      for (std::size_t i = 0; i + 1 < entries; ++i) add(loadLittle<std::uint32_t>(&bytes[4 * i]));
      sector = entries == file_.entriesPerSector() ? loadLittle<std::uint32_t>(&bytes[4 * (entries - 1)])
                                                   : kEndOfChain;
    }
    if (!complete() && sector != kEndOfChain && sector != kFreeSector) {
      damage_.add("The list of FAT sectors breaks off.");
    }
  }

  const SectorFile& file_;
  DamageList& damage_;
  std::uint64_t needed_ = 0;
  std::vector<std::uint32_t> fat_;
  std::unordered_set<std::uint32_t> difat_;
};

// Reads the FAT sectors into the table; one read for each row of neighbours.
void loadFat(const SectorFile& file, const std::vector<std::uint32_t>& sectors,
             std::vector<std::uint32_t>& next) {
  constexpr std::size_t kMaxRow = 32;
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < sectors.size();) {
    std::size_t row = 1;
    while (row < kMaxRow && i + row < sectors.size() && sectors[i + row] == sectors[i] + row) ++row;
    if (sectors[i] < file.sectorCount()) {
      bytes.resize(row * file.sectorSize());
      const std::size_t entries = file.file()->readAt(file.offsetOf(sectors[i]), bytes) / 4;
      const std::size_t at = i * file.entriesPerSector();
      for (std::size_t k = 0; k < entries && at + k < next.size(); ++k) {
        next[at + k] = loadLittle<std::uint32_t>(&bytes[4 * k]);
      }
    }
    i += row;
  }
}

}  // namespace

ChainTable readFat(const SectorFile& file, DamageList& damage) {
  const FatSectorList list(file, damage);
  const std::uint64_t covered = std::uint64_t{list.fatSectors().size()} * file.entriesPerSector();
  std::vector<std::uint32_t> next(
      static_cast<std::size_t>(std::min<std::uint64_t>(file.sectorCount(), covered)), kFreeSector);
  loadFat(file, list.fatSectors(), next);
  ChainTable table(std::move(next));
  for (const std::uint32_t sector : list.difatSectors()) table.claim(sector);
  for (std::size_t i = 0; i < list.fatSectors().size(); ++i) {
    const std::uint32_t sector = list.fatSectors()[i];
    if (sector >= file.sectorCount()) damage.add("FAT sector " + std::to_string(i) + " is missing.");
    if (sector < table.size() && !table.claim(sector)) {
      damage.add("FAT sector " + std::to_string(i) + " lies in sector " + std::to_string(sector) +
                 ", which is taken.");
    }
  }
  return table;
}

std::vector<std::uint32_t> readTable(const HostFile& file, const ByteRuns& places, std::uint64_t count) {
  count = std::min(count, places.size() / 4);
  std::vector<std::uint32_t> entries(static_cast<std::size_t>(count));
  std::array<std::uint8_t, 4096> bytes;
  std::size_t done = 0;
  while (done < entries.size()) {
    const std::size_t part = std::min(entries.size() - done, bytes.size() / 4);
    readRuns(file, places, 4 * std::uint64_t{done}, std::span(bytes).first(4 * part));
    for (std::size_t i = 0; i < part; ++i) entries[done + i] = loadLittle<std::uint32_t>(&bytes[4 * i]);
    done += part;
  }
  return entries;
}

}  // namespace forgeyard::compound
