#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <random>

#include "platform/storage/root_storage.h"
#include "tests/platform/storage/faulty_calls.h"
#include "tests/platform/storage/image_builder.h"
#include "tests/platform/storage/storage_testing.h"
#include "tests/platform/storage/strict_reader.h"

namespace forgeyard {
namespace {

using testing::IsEmpty;

constexpr std::uint32_t kFree = 0xFFFFFFFF;
constexpr std::uint32_t kFourBillion = 0xFFFFFFF0;

// The bytes of a sound file, with the places of its fields.
class Image {
 public:
  explicit Image(std::string file) : bytes(std::move(file)) {}

  std::uint32_t u32(std::size_t at) const {
    std::uint32_t value = 0;
    std::memcpy(&value, &bytes[at], 4);
    return value;
  }
  void set(std::size_t at, std::uint32_t value) { std::memcpy(&bytes[at], &value, 4); }
  void set16(std::size_t at, std::uint16_t value) { std::memcpy(&bytes[at], &value, 2); }

  static std::size_t sector(std::uint32_t number) { return (number + 1) * std::size_t{512}; }
  std::size_t fat(std::uint32_t number) const { return sector(u32(76)) + 4 * std::size_t{number}; }
  std::size_t miniFat(std::uint32_t number) const { return sector(u32(60)) + 4 * std::size_t{number}; }
  std::size_t entry(const std::u16string& name) const {
    std::size_t at = sector(u32(48));
    while (bytes.compare(at, 2 * name.size() + 2, reinterpret_cast<const char*>(name.c_str()),
                         2 * name.size() + 2) != 0) {
      at += 128;
    }
    return at;
  }
  std::uint32_t idOf(const std::u16string& name) const {
    return static_cast<std::uint32_t>((entry(name) - sector(u32(48))) / 128);
  }
  std::uint32_t start(const std::u16string& name) const { return u32(entry(name) + 116); }

  std::string bytes;
};

constexpr std::size_t kLeft = 68;
constexpr std::size_t kRight = 72;
constexpr std::size_t kChild = 76;
constexpr std::size_t kStart = 116;
constexpr std::size_t kSize = 120;

class DamagedFile : public StorageTest {
 protected:
  DamagedFile() {
    const Ref<IStorage> root = create();
    const Ref<IStorage> sub = createStorage(root.get(), u"Sub", kCreate);
    for (const auto& [name, size] : sizes_) {
      const bool inner = name.starts_with("Sub/");
      put(inner ? sub.get() : root.get(), BString::fromNarrow(inner ? name.substr(4) : name), pattern(size));
    }
    check(root->Commit(STGC_DEFAULT));
    sound_ = stored();
  }

  // Every stream as "name" if it is whole, "name:bytes" if its size is another; one that breaks off says so.
  std::string readable(IStorage* root, const std::string& prefix = "") {
    std::string found;
    for (const STATSTG& element : elementsOf(root)) {
      const std::string path = prefix + element.name.narrow();
      if (element.type == StgType::Storage) {
        found += readable(openStorage(root, element.name, kRead).get(), path + "/");
        continue;
      }
      const Ref<IStream> stream = openStream(root, element.name, kRead);
      const std::string bytes = readAll(stream.get());
      const std::size_t whole = sizes_.at(path);
      EXPECT_TRUE(pattern(whole).starts_with(bytes.substr(0, whole))) << path;
      found += " " + path + (bytes.size() == whole ? "" : ":" + std::to_string(bytes.size()));
      char byte = 0;
      EXPECT_EQ(stream->Read(&byte, 1, nullptr), bytes.size() == whole ? S_OK : STG_E_DOCFILECORRUPT) << path;
    }
    return found;
  }

  const std::map<std::string, std::size_t> sizes_ = {
      {"Also", 5000}, {"Long", 10000}, {"Short", 300}, {"Sub/Inner", 700}, {"Tiny", 70}};
  std::string sound_;
};

TEST_F(DamagedFile, WithoutHeaderOrRootIsRefused) {
  struct {
    const char* what;
    std::function<void(Image&)> spoil;
    HRESULT status;
  } const rows[] = {
      {"no bytes", [](Image& i) { i.bytes.clear(); }, STG_E_INVALIDHEADER},
      {"one byte short of a header", [](Image& i) { i.bytes.resize(511); }, STG_E_INVALIDHEADER},
      {"signature", [](Image& i) { i.bytes[0] = 0; }, STG_E_INVALIDHEADER},
      {"byte order", [](Image& i) { i.set16(28, 0xFEFF); }, STG_E_INVALIDHEADER},
      {"version", [](Image& i) { i.set16(26, 5); }, STG_E_INVALIDHEADER},
      {"version of the other sector size", [](Image& i) { i.set16(26, 4); }, STG_E_INVALIDHEADER},
      {"sector size", [](Image& i) { i.set16(30, 31); }, STG_E_INVALIDHEADER},
      {"mini sector size", [](Image& i) { i.set16(32, 7); }, STG_E_INVALIDHEADER},
      {"cutoff", [](Image& i) { i.set(56, 512); }, STG_E_INVALIDHEADER},
      {"nothing but the header", [](Image& i) { i.bytes.resize(512); }, STG_E_DOCFILECORRUPT},
      {"no directory", [](Image& i) { i.set(48, 0xFFFFFFFE); }, STG_E_DOCFILECORRUPT},
      {"directory behind the end", [](Image& i) { i.set(48, 1000000); }, STG_E_DOCFILECORRUPT},
      {"directory in the FAT", [](Image& i) { i.set(48, i.u32(76)); }, STG_E_DOCFILECORRUPT},
      {"no FAT", [](Image& i) { i.set(76, kFree); }, STG_E_DOCFILECORRUPT},
      {"root's type", [](Image& i) { i.bytes[i.entry(u"Root Entry") + 66] = 1; }, STG_E_DOCFILECORRUPT},
  };
  for (const auto& row : rows) {
    Image image(sound_);
    row.spoil(image);
    directory_.put("p.nqp", image.bytes);
    EXPECT_EQ(openStatus(), row.status) << row.what;
    EXPECT_TRUE(stored() == image.bytes) << row.what;
  }
}

TEST_F(DamagedFile, KeepsWhatIsReadable) {
  const std::string all = " Sub/Inner Also Long Tiny Short";
  struct {
    const char* what;
    std::function<void(Image&)> spoil;
    std::string readable;
    bool reported;
  } const rows[] = {
      {"nothing", [](Image&) {}, all, false},
      {"number of FAT sectors", [](Image& i) { i.set(44, kFourBillion); }, all, false},
      {"number of mini FAT sectors", [](Image& i) { i.set(64, kFourBillion); }, all, false},
      {"number of DIFAT sectors", [](Image& i) { i.set(72, kFourBillion); }, all, false},
      {"first DIFAT sector", [](Image& i) { i.set(68, 0); }, all, false},
      {"mini FAT", [](Image& i) { i.set(60, 1000000); }, " Sub/Inner:0 Also Long Tiny:0 Short:0", true},
      {"mini FAT in a stream", [](Image& i) { i.set(60, i.start(u"Long")); },
       " Sub/Inner:64 Also Long:0 Tiny:64 Short:64", true},
      {"chain in a circle", [](Image& i) { i.set(i.fat(i.start(u"Long") + 3), i.start(u"Long")); },
       " Sub/Inner Also Long:2048 Tiny Short", true},
      {"chain onto itself", [](Image& i) { i.set(i.fat(i.start(u"Long")), i.start(u"Long")); },
       " Sub/Inner Also Long:512 Tiny Short", true},
      {"chain into free space", [](Image& i) { i.set(i.fat(i.start(u"Long") + 1), kFree); },
       " Sub/Inner Also Long:1024 Tiny Short", true},
      {"chain that ends early", [](Image& i) { i.set(i.fat(i.start(u"Long") + 1), 0xFFFFFFFE); },
       " Sub/Inner Also Long:1024 Tiny Short", true},
      {"chain into another", [](Image& i) { i.set(i.fat(i.start(u"Long") + 1), i.start(u"Also")); },
       " Sub/Inner Also Long:1024 Tiny Short", true},
      {"chain into the FAT", [](Image& i) { i.set(i.fat(i.start(u"Long") + 1), 0); },
       " Sub/Inner Also Long:1024 Tiny Short", true},
      {"two streams in one place", [](Image& i) { i.set(i.entry(u"Long") + kStart, i.start(u"Also")); },
       " Sub/Inner Also Long:0 Tiny Short", true},
      {"mini chain in a circle", [](Image& i) { i.set(i.miniFat(i.start(u"Short") + 1), i.start(u"Short")); },
       " Sub/Inner Also Long Tiny Short:128", true},
      {"mini chain behind the end", [](Image& i) { i.set(i.miniFat(i.start(u"Short")), 5000); },
       " Sub/Inner Also Long Tiny Short:64", true},
      {"mini stream is gone", [](Image& i) { i.set(i.entry(u"Root Entry") + kStart, kFree); },
       " Sub/Inner:0 Also Long Tiny:0 Short:0", true},
      {"size of four billion", [](Image& i) { i.set(i.entry(u"Long") + kSize, kFourBillion); },
       " Sub/Inner Also Long:10240 Tiny Short", true},
      {"short stream that claims to be long",
       [](Image& i) { i.set(i.entry(u"Short") + kSize, kFourBillion); }, " Sub/Inner Also Long Tiny Short:0",
       true},
      {"upper half of a size", [](Image& i) { i.set(i.entry(u"Long") + kSize + 4, 0xDEADBEEF); }, all, false},
      {"end of the file cut off", [](Image& i) { i.bytes.resize(i.sector(i.start(u"Long")) + 700); },
       " Sub/Inner Also Long:700 Tiny Short", true},
      {"sibling is itself", [](Image& i) { i.set(i.entry(u"Long") + kLeft, i.idOf(u"Long")); },
       " Long Tiny Short", true},
      {"sibling doesn't exist", [](Image& i) { i.set(i.entry(u"Tiny") + kRight, kFourBillion); }, all, true},
      {"child is the root", [](Image& i) { i.set(i.entry(u"Sub") + kChild, 0); }, " Also Long Tiny Short",
       true},
      {"child of another", [](Image& i) { i.set(i.entry(u"Sub") + kChild, i.idOf(u"Also")); },
       " Also Long Tiny Short", true},
      {"colours",
       [](Image& i) {
         for (const char16_t* n : {u"Also", u"Long", u"Sub"}) i.bytes[i.entry(n) + 67] ^= 1;
       },
       all, false},
      {"unknown type", [](Image& i) { i.bytes[i.entry(u"Long") + 66] = 7; }, " Sub/Inner Also Tiny Short",
       true},
      {"length of a name", [](Image& i) { i.set16(i.entry(u"Long") + 64, 0xFFFF); }, all, true},
      {"empty name", [](Image& i) { i.bytes[i.entry(u"Long")] = 0; }, " Sub/Inner Also Tiny Short", true},
      {"name twice", [](Image& i) { std::memcpy(&i.bytes[i.entry(u"Tiny")], u"ALSO", 8); },
       " Sub/Inner Also Long Short", true},
  };
  for (const auto& row : rows) {
    Image image(sound_);
    row.spoil(image);
    directory_.put("p.nqp", image.bytes);
    const Ref<IStorage> root = open();
    EXPECT_EQ(readable(root.get()), row.readable) << row.what;
    EXPECT_EQ(!findingsOf(root.get()).empty(), row.reported) << row.what;
    put(root.get(), u"Added", "x");
    check(root->Commit(STGC_ONLYIFCURRENT));
    EXPECT_THAT(readStrictly(stored()).complaints, IsEmpty()) << row.what << ": what is written is sound";
  }
}

TEST_F(DamagedFile, FindingsNameTheElement) {
  Image image(sound_);
  image.set(image.fat(image.start(u"Long") + 1), kFree);
  image.set(image.miniFat(image.start(u"Inner")), kFree);
  directory_.put("p.nqp", image.bytes);
  EXPECT_THAT(findingsOf(open().get()),
              testing::ElementsAre("Stream \"Long\" in \"the root\": 1024 of 10000 bytes can be read.",
                                   "Stream \"Inner\" in \"Sub\": 64 of 700 bytes can be read."));
}

TEST_F(DamagedFile, ADamagedStreamCanBeReplacedAndMadeWhole) {
  Image image(sound_);
  image.set(image.fat(image.start(u"Long")), kFree);
  directory_.put("p.nqp", image.bytes);
  const Ref<IStorage> root = open();
  const Ref<IStream> stream = openStream(root.get(), u"Long");
  check(stream->SetSize(600));
  EXPECT_EQ(readAll(stream.get()), pattern(512) + std::string(88, '\0'));
  EXPECT_EQ(read(stream.get(), 1), "");
}

TEST_F(DamagedFile, AFileCutUnderAnOpenRootFailsToRead) {
  const Ref<IStorage> root = open();
  std::filesystem::resize_file(host(), 1024);
  const Ref<IStream> stream = openStream(root.get(), u"Long", kRead);
  char bytes[100];
  EXPECT_EQ(stream->Read(bytes, sizeof bytes, nullptr), STG_E_READFAULT);
}

TEST_F(DamagedFile, LoneSurrogatesInNamesSurvive) {
  Image image(sound_);
  image.set16(image.entry(u"Tiny"), 0xDFFF);
  directory_.put("p.nqp", image.bytes);
  const Ref<IStorage> root = open();
  const BString name = std::u16string{0xDFFF, u'i', u'n', u'y'};
  EXPECT_EQ(get(root.get(), name), pattern(70));
  check(root->SetClass(IStorage::iid));
  check(root->Commit(STGC_DEFAULT));
  EXPECT_EQ(get(root.get(), name), pattern(70));
}

// Many elements that claim the same bytes, and storages within storages by the thousand: what a file's own
// size doesn't pay for costs no time or memory.
TEST_F(DamagedFile, NeitherSharedChainsNorDepthMultiplyTheWork) {
  std::vector<ImageElement> streams(3000);
  for (std::size_t i = 0; i < streams.size(); ++i) {
    const std::string number = std::to_string(i);
    streams[i].name = std::u16string(number.begin(), number.end());
  }
  streams[0].bytes = pattern(1'000'000);
  Image wide(buildImage(streams));
  const std::uint32_t start = wide.start(u"0");
  for (std::size_t i = 1; i < streams.size(); ++i) {
    wide.set(wide.entry(streams[i].name) + kStart, start);
    wide.set(wide.entry(streams[i].name) + kSize, 1'000'000);
  }
  directory_.put("p.nqp", wide.bytes);
  std::size_t total = 0;
  {
    const Ref<IStorage> root = open();
    for (const STATSTG& element : elementsOf(root.get())) total += element.size;
    EXPECT_THAT(findingsOf(root.get()), testing::SizeIs(100));
  }
  EXPECT_EQ(total, 1'000'000u);

  // Siblings of one name, linked anew so that each is the child of the one before it.
  constexpr std::uint32_t kDepth = 50000;
  Image deep(buildImage(
      std::vector<ImageElement>(kDepth, {.name = u"D", .bytes = "", .storage = true, .children = {}})));
  for (std::uint32_t id = 1; id <= kDepth; ++id) {
    const std::size_t entry = deep.sector(deep.u32(48)) + 128 * std::size_t{id};
    deep.set(entry + kRight, kFree);
    deep.set(entry + kChild, id < kDepth ? id + 1 : kFree);
  }
  directory_.put("p.nqp", deep.bytes);
  const Ref<IStorage> root = open();
  check(root->SetClass(IStorage::iid));
  check(root->Commit(STGC_DEFAULT));
  EXPECT_THAT(findingsOf(root.get()), IsEmpty());
  check(openStorage(root.get(), u"D")->DestroyElement(u"D"));
}

// Sound files of both sector sizes with random bytes changed: every end is a status or contents.
TEST_F(DamagedFile, RandomDamageEndsInAStatus) {
  std::mt19937 random(11);
  const std::string large = buildImage({{.name = u"Long", .bytes = pattern(20000), .children = {}},
                                        {.name = u"Short", .bytes = pattern(200), .children = {}}},
                                       {.sectorShift = 12, .scattered = true, .cutLastSector = false});
  FaultyCalls calls;
  calls.noSync = true;
  int opened = 0;
  for (int round = 0; round < 300; ++round) {
    std::string bytes = round % 2 ? sound_ : large;
    for (int i = 0; i < 1 + round % 8; ++i) {
      // Mostly the tables: they lie in front, or behind.
      const std::size_t at =
          random() % 3 ? random() % std::min<std::size_t>(bytes.size(), 4096) : random() % bytes.size();
      bytes[at] = static_cast<char>(random() % 4 ? random() % 8 : 0xFF);
    }
    if (round % 5 == 0) bytes.resize(random() % bytes.size());
    directory_.put("p.nqp", bytes);
    Ref<IStorage> root;
    if (failed(guard([&] { root = compound::openRoot(calls, host(), path(), kChangeRoot); }))) continue;
    ++opened;
    contentsOf(root.get());
    put(root.get(), u"Added", "x");
    check(root->Commit(STGC_DEFAULT));
    EXPECT_THAT(readStrictly(stored()).complaints, IsEmpty()) << round;
  }
  EXPECT_GT(opened, 50);
}

}  // namespace
}  // namespace forgeyard
