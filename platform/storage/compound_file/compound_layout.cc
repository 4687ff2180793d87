#include "platform/storage/compound_file/compound_layout.h"

#include "platform/com/status.h"

namespace forgeyard::compound {
namespace {

constexpr std::uint32_t kEntriesPerSector = CompoundLayout::kSectorSize / 4;

// How many units of a size hold so many items.
constexpr std::uint32_t unitsFor(std::uint64_t items, std::uint64_t unitSize) {
  return static_cast<std::uint32_t>((items + unitSize - 1) / unitSize);
}

}  // namespace

CompoundLayout::CompoundLayout(const StorageTree& root) {
  collectEntries(root);
  placeShortStreams();
  placeTables();
  placeLongStreams();
}

// Breadth first: the children of a storage get neighbouring ids in their order.
void CompoundLayout::collectEntries(const StorageTree& root) {
  Entry& top = entries_.emplace_back();
  top.name = u"Root Entry";
  top.storage = &root;
  std::uint64_t bytes = 0;
  for (std::size_t id = 0; id < entries_.size(); ++id) {
    if (!entries_[id].storage) continue;
    const std::vector<Element>& children = entries_[id].storage->elements;
    const std::uint32_t firstChild = static_cast<std::uint32_t>(entries_.size());
    std::vector<SiblingLinks> links(children.size());
    entries_[id].child = linkSiblings(links, firstChild);
    for (std::size_t i = 0; i < children.size(); ++i) {
      const Element& child = children[i];
      Entry& entry = entries_.emplace_back();
      entry.name = child.name;
      entry.storage = child.storage.get();
      entry.stream = child.stream.get();
      entry.links = links[i];
      if (child.stream) bytes += child.stream->size();
    }
    if (bytes > kMaxFileSize || entries_.size() > kMaxFileSize / kEntrySize)
      throw StatusError(STG_E_MEDIUMFULL);
  }
}

void CompoundLayout::placeShortStreams() {
  for (std::uint32_t id = 0; id < entries_.size(); ++id) {
    Entry& entry = entries_[id];
    if (!entry.stream) continue;
    const std::uint64_t size = entry.stream->size();
    entry.start = kEndOfChain;
    if (size >= kMiniCutoff) {
      longStreams_.push_back(id);
      streamSectors_ += unitsFor(size, kSectorSize);
    } else if (size > 0) {
      shortStreams_.push_back(id);
      entry.start = miniSectors_;
      miniSectors_ += unitsFor(size, kMiniSectorSize);
    }
  }
}

void CompoundLayout::placeTables() {
  directory_.count = unitsFor(entries_.size(), kSectorSize / kEntrySize);
  miniFat_.count = unitsFor(miniSectors_, kEntriesPerSector);
  miniStream_.count = unitsFor(miniSectors_, kSectorSize / kMiniSectorSize);
  const std::uint32_t others = directory_.count + miniFat_.count + miniStream_.count + streamSectors_;
  // The FAT has entries for its own sectors and its list's, so both grow until they fit.
  for (;;) {
    const std::uint32_t fat = unitsFor(std::uint64_t{others} + fat_.count + difat_.count, kEntriesPerSector);
    const std::uint32_t difat =
        fat > kHeaderFatSectors ? unitsFor(fat - kHeaderFatSectors, kEntriesPerSector - 1) : 0;
    if (fat == fat_.count && difat == difat_.count) break;
    fat_.count = fat;
    difat_.count = difat;
  }
  for (Extent* extent : {&fat_, &difat_, &directory_, &miniFat_, &miniStream_}) {
    extent->first = sectorCount_;
    sectorCount_ += extent->count;
  }
  entries_[0].start = miniStream_.start();
}

void CompoundLayout::placeLongStreams() {
  for (const std::uint32_t id : longStreams_) {
    entries_[id].start = sectorCount_;
    sectorCount_ += unitsFor(entries_[id].stream->size(), kSectorSize);
  }
  if (fileSize() > kMaxFileSize) throw StatusError(STG_E_MEDIUMFULL);
}

std::uint64_t CompoundLayout::offsetOf(const Entry& stream) const noexcept {
  if (stream.stream->size() >= kMiniCutoff) return offsetOf(stream.start);
  return offsetOf(miniStream_.first) + std::uint64_t{stream.start} * kMiniSectorSize;
}

}  // namespace forgeyard::compound
