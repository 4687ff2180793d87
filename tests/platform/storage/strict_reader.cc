#include "tests/platform/storage/strict_reader.h"

#include <cstdint>
#include <cstring>

#include "platform/text/narrow.h"

namespace forgeyard {
namespace {

constexpr std::uint32_t kEnd = 0xFFFFFFFE;
constexpr std::uint32_t kFree = 0xFFFFFFFF;

class StrictReader {
 public:
  explicit StrictReader(const std::string& file) : file_(file) {}

  StrictReading read() {
    readHeader();
    if (result_.complaints.empty()) readFat();
    if (result_.complaints.empty()) readDirectory();
    for (std::uint32_t sector = 0; sector < fat_.size(); ++sector) {
      const bool there = sector < sectors();
      expect(there || fat_[sector] == kFree, "FAT entry behind the file's end");
      if (there && !used_[sector]) expect(fat_[sector] == kFree, "a sector belongs to nothing");
    }
    return std::move(result_);
  }

 private:
  template <class T>
  T at(const std::string& bytes, std::size_t offset) const {
    T value{};
    if (offset + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
  }
  std::uint32_t u32(std::size_t offset) const { return at<std::uint32_t>(file_, offset); }

  void expect(bool right, const std::string& complaint) {
    if (!right) result_.complaints.push_back(complaint);
  }

  std::size_t sectors() const { return file_.size() / size_ - 1; }

  void readHeader() {
    expect(file_.substr(0, 8) == "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", "signature");
    const int version = at<std::uint16_t>(file_, 26);
    const int shift = at<std::uint16_t>(file_, 30);
    expect((version == 3 && shift == 9) || (version == 4 && shift == 12), "version and sector size");
    size_ = std::size_t{1} << shift;
    expect(file_.size() % size_ == 0 && file_.size() > size_, "file size in whole sectors");
    expect(at<std::uint16_t>(file_, 28) == 0xFFFE && at<std::uint16_t>(file_, 32) == 6 && u32(56) == 4096,
           "constants");
    expect(version == 4 || u32(40) == 0, "directory sector count of version 3");
    used_.resize(sectors());
  }

  // Takes a chain apart, which has to end as it should and to share no sector.
  std::string chain(std::uint32_t first, const std::string& what, std::size_t wantedSectors) {
    std::string bytes;
    std::size_t count = 0;
    for (std::uint32_t sector = first; sector != kEnd; sector = fat_[sector], ++count) {
      if (sector >= sectors() || used_[sector]) {
        expect(false, what + ": broken chain");
        return bytes;
      }
      used_[sector] = true;
      bytes += file_.substr((sector + 1) * size_, size_);
    }
    expect(count == wantedSectors, what + ": length of the chain");
    return bytes;
  }

  void takeTableSector(std::uint32_t sector, std::uint32_t mark, const std::string& what) {
    if (sector >= sectors() || used_[sector]) return expect(false, what + ": sector");
    used_[sector] = true;
    marks_.emplace_back(sector, mark);
  }

  void readFat() {
    std::vector<std::uint32_t> list;
    for (std::size_t i = 0; i < 109; ++i) list.push_back(u32(76 + 4 * i));
    std::uint32_t difat = u32(68);
    std::uint32_t difatCount = 0;
    for (; difat != kEnd && difat < sectors() && difatCount <= sectors(); ++difatCount) {
      takeTableSector(difat, 0xFFFFFFFC, "DIFAT");
      const std::size_t offset = (difat + 1) * size_;
      for (std::size_t i = 0; i + 1 < size_ / 4; ++i) list.push_back(u32(offset + 4 * i));
      difat = u32(offset + size_ - 4);
    }
    expect(difat == kEnd && difatCount == u32(72), "DIFAT chain");
    const std::size_t count = u32(44);
    expect(count <= list.size() && count == (sectors() + size_ / 4 - 1) / (size_ / 4),
           "number of FAT sectors");
    for (std::size_t i = 0; i < list.size(); ++i) {
      if (i >= count) {
        expect(list[i] == kFree, "unused place in the list of FAT sectors");
        continue;
      }
      takeTableSector(list[i], 0xFFFFFFFD, "FAT");
      for (std::size_t k = 0; k < size_ / 4; ++k) fat_.push_back(u32((list[i] + 1) * size_ + 4 * k));
    }
    for (const auto& [sector, mark] : marks_)
      expect(sector < fat_.size() && fat_[sector] == mark, "mark of a table");
    fat_.resize(std::max(fat_.size(), sectors()));
  }

  struct Entry {
    std::u16string name;
    int type = 0;
    bool black = false;
    std::uint32_t left = 0, right = 0, child = 0, start = 0;
    std::string clsid;
    std::uint64_t size = 0;
  };

  Entry entry(std::uint32_t id) {
    const std::string bytes = directory_.substr(std::size_t{id} * 128, 128);
    Entry e;
    const std::size_t nameBytes = at<std::uint16_t>(bytes, 64);
    for (std::size_t i = 0; i + 2 < nameBytes; i += 2) e.name += at<char16_t>(bytes, i);
    for (std::size_t i = nameBytes; i < 64; ++i) expect(bytes[i] == 0, "bytes behind a name");
    e.type = bytes[66];
    e.black = bytes[67] == 1;
    e.left = at<std::uint32_t>(bytes, 68);
    e.right = at<std::uint32_t>(bytes, 72);
    e.child = at<std::uint32_t>(bytes, 76);
    e.clsid = bytes.substr(80, 16);
    e.start = at<std::uint32_t>(bytes, 116);
    e.size = at<std::uint64_t>(bytes, 120);
    return e;
  }

  void readDirectory() {
    std::size_t sectorsOfDirectory = 0;
    for (std::uint32_t s = u32(48); s < fat_.size() && sectorsOfDirectory <= sectors(); s = fat_[s])
      ++sectorsOfDirectory;
    directory_ = chain(u32(48), "directory", sectorsOfDirectory);
    seen_.resize(directory_.size() / 128);
    const Entry root = entry(0);
    expect(root.type == 5 && root.name == u"Root Entry", "root entry");
    expect(root.left == kFree && root.right == kFree, "siblings of the root");
    mini_ = chain(root.start, "mini stream", (root.size + size_ - 1) / size_);
    const std::string table = chain(u32(60), "mini FAT", u32(64));
    for (std::size_t i = 0; i < table.size(); i += 4) miniFat_.push_back(at<std::uint32_t>(table, i));
    expect(u32(64) == (root.size / 64 + size_ / 4 - 1) / (size_ / 4), "number of mini FAT sectors");
    miniUsed_.resize(root.size / 64);
    seen_[0] = true;
    readChildren(root.child, "");
    for (std::uint32_t id = 0; id < seen_.size(); ++id) checkUnused(id);
    for (std::size_t i = 0; i < miniFat_.size(); ++i) {
      expect(i < miniUsed_.size() ? miniUsed_[i] : miniFat_[i] == kFree, "mini FAT entry of nothing");
    }
  }

  void checkUnused(std::uint32_t id) {
    if (seen_[id]) return;
    std::string blank(128, '\0');
    blank.replace(68, 12, 12, '\xFF');
    expect(directory_.substr(std::size_t{id} * 128, 128) == blank, "unused directory entry");
  }

  void readChildren(std::uint32_t child, const std::string& prefix) {
    std::u16string previous;
    const int height = readSiblings(child, prefix, true, previous);
    expect(height >= 0, prefix + ": red-black tree");
  }

  // In order; the number of black levels, or -1.
  int readSiblings(std::uint32_t id, const std::string& prefix, bool parentBlack, std::u16string& previous) {
    if (id == kFree) return 0;
    if (id >= seen_.size() || seen_[id]) return -1;
    seen_[id] = true;
    const Entry e = entry(id);
    const int left = readSiblings(e.left, prefix, e.black, previous);
    expect(previous.empty() || comesBefore(previous, e.name), prefix + ": order of names");
    previous = e.name;
    readElement(e, prefix);
    const int right = readSiblings(e.right, prefix, e.black, previous);
    if (left < 0 || left != right || (!e.black && !parentBlack)) return -1;
    return left + (e.black ? 1 : 0);
  }

  // For names of the letters that the tests use.
  static bool comesBefore(std::u16string a, std::u16string b) {
    const auto upper = [](char16_t unit) {
      return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
    };
    for (char16_t& unit : a) unit = upper(unit);
    for (char16_t& unit : b) unit = upper(unit);
    return a.size() != b.size() ? a.size() < b.size() : a < b;
  }

  void readElement(const Entry& e, const std::string& prefix) {
    const std::string path = prefix + narrowFromWide(e.name);
    if (e.type == 1) {
      expect(e.size == 0 && e.start == 0, path + ": size and start of a storage");
      Guid clsid;
      clsid.data1 = at<std::uint32_t>(e.clsid, 0);
      clsid.data2 = at<std::uint16_t>(e.clsid, 4);
      clsid.data3 = at<std::uint16_t>(e.clsid, 6);
      std::memcpy(clsid.data4.data(), e.clsid.data() + 8, 8);
      result_.contents[path + "/"] = formatGuid(clsid);
      return readChildren(e.child, path + "/");
    }
    expect(e.type == 2 && e.child == kFree && e.clsid == std::string(16, '\0'),
           path + ": fields of a stream");
    std::string bytes =
        e.size < 4096 ? miniChain(e, path) : chain(e.start, path, (e.size + size_ - 1) / size_);
    bytes.resize(e.size);
    result_.contents[path] = bytes;
  }

  std::string miniChain(const Entry& e, const std::string& path) {
    std::string bytes;
    for (std::uint32_t sector = e.start; sector != kEnd; sector = miniFat_[sector]) {
      if (sector >= miniUsed_.size() || miniUsed_[sector]) {
        expect(false, path + ": broken mini chain");
        return bytes;
      }
      miniUsed_[sector] = true;
      bytes += mini_.substr(std::size_t{sector} * 64, 64);
    }
    expect(bytes.size() == (e.size + 63) / 64 * 64, path + ": length of the mini chain");
    return bytes;
  }

  const std::string& file_;
  StrictReading result_;
  std::size_t size_ = 512;
  std::vector<std::uint32_t> fat_;
  std::vector<bool> used_;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> marks_;
  std::string directory_;
  std::vector<bool> seen_;
  std::string mini_;
  std::vector<std::uint32_t> miniFat_;
  std::vector<bool> miniUsed_;
};

}  // namespace

StrictReading readStrictly(const std::string& file) {
  return StrictReader(file).read();
}

}  // namespace forgeyard
