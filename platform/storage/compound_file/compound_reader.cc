#include "platform/storage/compound_file/compound_reader.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

#include "platform/com/status.h"
#include "platform/storage/compound_file/chain_table.h"
#include "platform/storage/compound_file/compound_format.h"
#include "platform/storage/compound_file/damage_list.h"
#include "platform/storage/compound_file/element_name.h"
#include "platform/storage/compound_file/fat_reader.h"
#include "platform/storage/compound_file/sector_file.h"
#include "platform/text/narrow.h"

namespace forgeyard::compound {
namespace {

std::string quoted(std::u16string_view name) {
  return '"' + narrowFromWide(name) + '"';
}

// The two kinds of stream as places in the file: chains of sectors, and chains of mini sectors within the
// mini stream, which is a chain of sectors itself.
class StreamPlaces {
 public:
  StreamPlaces(const SectorFile& file, DamageList& damage) : file_(file), fat_(readFat(file, damage)) {}

  // The sectors of a chain, as far as they can be had; at most so many bytes, rounded up to sectors.
  ByteRuns sectors(std::uint32_t first, std::uint64_t bytes) {
    ByteRuns runs;
    bool cut = false;  // by the end of the file
    const std::uint64_t limit = bytes / file_.sectorSize() + (bytes % file_.sectorSize() != 0);
    fat_.follow(first, limit, [&](std::uint32_t start, std::uint32_t count) {
      if (cut) return;
      const std::uint64_t length = std::uint64_t{count} * file_.sectorSize();
      const std::uint64_t there = file_.available(file_.offsetOf(start), length);
      runs.append(file_.offsetOf(start), there);
      cut = there < length;
    });
    return runs;
  }

  // The size that the root's entry gives is not needed: the mini stream is as long as its chain.
  void openMiniStream(std::uint32_t first) {
    mini_ = sectors(first, UINT64_MAX);
    const std::uint64_t count = mini_.size() / kMiniSectorSize;
    const ByteRuns table = sectors(file_.header().firstMiniFatSector, 4 * count);
    miniFat_ = ChainTable(readTable(*file_.file(), table, count));
  }

  ByteRuns stream(std::uint32_t first, std::uint64_t size) {
    if (size == 0) return {};
    return size < kMiniCutoff ? miniSectors(first, size) : sectors(first, size);
  }

 private:
  ByteRuns miniSectors(std::uint32_t first, std::uint64_t size) {
    ByteRuns runs;
    miniFat_.follow(
        first, (size + kMiniSectorSize - 1) / kMiniSectorSize, [&](std::uint32_t start, std::uint32_t count) {
          mini_.forEach(std::uint64_t{start} * kMiniSectorSize, std::uint64_t{count} * kMiniSectorSize,
                        [&](std::uint64_t at, std::uint64_t length) { runs.append(at, length); });
        });
    return runs;
  }

  const SectorFile& file_;
  ChainTable fat_;
  ByteRuns mini_;
  ChainTable miniFat_;
};

// Builds the tree of storages from the directory. The siblings' order and colours are not relied on.
class DirectoryReader {
 public:
  explicit DirectoryReader(const SharedFile& file) : file_(file), places_(file_, damage_) {
    const ByteRuns runs = places_.sectors(file_.header().firstDirectorySector, UINT64_MAX);
    bytes_.resize(static_cast<std::size_t>(runs.size()));
    readRuns(*file, runs, 0, bytes_);
    seen_.resize(count());
  }

  CompoundContents read() {
    if (count() == 0) throw StatusError(STG_E_DOCFILECORRUPT);
    const DirectoryEntry rootEntry = entry(0);
    if (rootEntry.type != EntryType::Root) throw StatusError(STG_E_DOCFILECORRUPT);
    seen_[0] = true;
    places_.openMiniStream(rootEntry.size == 0 ? kEndOfChain : rootEntry.start);
    CompoundContents contents;
    contents.root = makeStorage(rootEntry);
    pending_.push_back({contents.root.get(), u"the root", rootEntry.child});
    while (!pending_.empty()) readNextStorage();
    reportUnreached();
    contents.damage = damage_.take();
    return contents;
  }

 private:
  struct Pending {
    StorageTree* storage;
    BString name;
    std::uint32_t child;
  };
  struct Child {
    BString name;
    std::uint32_t id;
  };

  std::uint32_t count() const noexcept { return static_cast<std::uint32_t>(bytes_.size() / kEntrySize); }

  DirectoryEntry entry(std::uint32_t id) const noexcept {
    return decodeEntry(std::span<const std::uint8_t, kEntrySize>(&bytes_[id * kEntrySize], kEntrySize));
  }

  static std::shared_ptr<StorageTree> makeStorage(const DirectoryEntry& entry) {
    auto storage = std::make_shared<StorageTree>();
    storage->clsid = entry.clsid;
    storage->stateBits = entry.stateBits;
    storage->created = entry.created;
    storage->modified = entry.modified;
    return storage;
  }

  void readNextStorage() {
    const Pending next = std::move(pending_.back());
    pending_.pop_back();
    std::vector<Child> children = collectChildren(next);
    sortChildren(children, next.name);
    next.storage->elements.reserve(children.size());
    for (const Child& child : children) addElement(next, child);
  }

  // Walks the tree of siblings. Each entry counts once in the whole file, so a circle ends.
  std::vector<Child> collectChildren(const Pending& parent) {
    std::vector<Child> children;
    std::vector<std::uint32_t> open{parent.child};
    while (!open.empty()) {
      const std::uint32_t id = open.back();
      open.pop_back();
      if (id == kNoEntry) continue;
      if (id >= count() || seen_[id]) {
        damage_.add("The directory of " + quoted(parent.name) + " points to entry " + std::to_string(id) +
                    (id >= count() ? ", which doesn't exist." : " again."));
        continue;
      }
      seen_[id] = true;
      const DirectoryEntry child = entry(id);
      open.push_back(child.right);
      open.push_back(child.left);
      if (isUsable(child, parent.name)) children.push_back({child.name(), id});
    }
    return children;
  }

  bool isUsable(const DirectoryEntry& child, const BString& parent) {
    if (child.type != EntryType::Storage && child.type != EntryType::Stream) {
      damage_.add("Element " + quoted(child.name()) + " in " + quoted(parent) + " is of no known type.");
      return false;
    }
    if (child.nameDamaged)
      damage_.add("The name of " + quoted(child.name()) + " in " + quoted(parent) + " is damaged.");
    return child.nameLength > 0;
  }

  // Of several elements with one name the first stays, which is the one that other readers find.
  void sortChildren(std::vector<Child>& children, const BString& parent) {
    std::stable_sort(children.begin(), children.end(),
                     [](const Child& a, const Child& b) { return DirectoryOrder{}(a.name, b.name); });
    const auto rest = std::unique(children.begin(), children.end(),
                                  [](const Child& a, const Child& b) { return sameName(a.name, b.name); });
    if (rest != children.end()) damage_.add("Names in " + quoted(parent) + " stand there more than once.");
    children.erase(rest, children.end());
  }

  void addElement(const Pending& parent, const Child& child) {
    const DirectoryEntry stored = entry(child.id);
    Element& element = parent.storage->elements.emplace_back();
    element.name = child.name;
    if (stored.type == EntryType::Storage) {
      element.storage = makeStorage(stored);
      pending_.push_back({element.storage.get(), child.name, stored.child});
      return;
    }
    // Version 3 has sizes of 32 bits; some writers leave garbage in the upper half.
    const std::uint64_t size = file_.header().majorVersion == 3 ? stored.size & 0xFFFFFFFF : stored.size;
    element.stream = std::make_shared<StreamContent>(file_.file(), places_.stream(stored.start, size), size);
    if (element.stream->damaged()) {
      damage_.add("Stream " + quoted(child.name) + " in " + quoted(parent.name) + ": " +
                  std::to_string(element.stream->size()) + " of " + std::to_string(size) +
                  " bytes can be read.");
    }
  }

  void reportUnreached() {
    std::uint32_t lost = 0;
    for (std::uint32_t id = 0; id < count(); ++id) {
      if (!seen_[id] && entry(id).type != EntryType::Free) ++lost;
    }
    if (lost > 0) damage_.add(std::to_string(lost) + " elements can't be reached from the root.");
  }

  DamageList damage_;
  SectorFile file_;
  StreamPlaces places_;
  std::vector<std::uint8_t> bytes_;  // the directory
  std::vector<bool> seen_;           // by entry
  std::vector<Pending> pending_;
};

}  // namespace

CompoundContents readCompoundFile(const SharedFile& file) {
  return DirectoryReader(file).read();
}

}  // namespace forgeyard::compound
