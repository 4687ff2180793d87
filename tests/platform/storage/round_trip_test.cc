#include <gmock/gmock.h>

#include "platform/storage/compound_file/compound_layout.h"
#include "platform/storage/compound_file/little_endian.h"
#include "tests/platform/storage/storage_testing.h"
#include "tests/platform/storage/strict_reader.h"

namespace forgeyard {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Guid kFolder = guid("157C5E4A-3BD5-11D1-817F-00AA002676D3");
constexpr Guid kOther = guid("01234567-89AB-CDEF-0123-456789ABCDEF");

class RoundTrip : public StorageTest {
 protected:
  // Reads the file by both readers; they agree, and nothing is wrong.
  Contents reopened() const {
    const StrictReading strict = readStrictly(stored());
    EXPECT_THAT(strict.complaints, IsEmpty());
    const Ref<IStorage> root = open(kReadRoot);
    EXPECT_THAT(findingsOf(root.get()), IsEmpty());
    Contents contents = contentsOf(root.get());
    EXPECT_TRUE(contents == strict.contents);
    return contents;
  }
};

TEST_F(RoundTrip, StreamsOfEverySizeAroundTheBorders) {
  Contents expected;
  {
    const Ref<IStorage> root = create();
    const Ref<IStorage> sub = createStorage(root.get(), u"Sub");
    expected["Sub/"] = formatGuid(GUID_NULL);
    for (const std::size_t size : {0,    1,    63,   64,   65,    511,   512,   513,    2048,   4032,
                                   4095, 4096, 4097, 4608, 65535, 65536, 65537, 131072, 131073, 1 << 20}) {
      const BString name = BString::fromNarrow("s" + std::to_string(size));
      const std::string bytes = pattern(size, static_cast<std::uint32_t>(size));
      put(root.get(), name, bytes);
      put(sub.get(), name, bytes);
      expected[name.narrow()] = expected["Sub/" + name.narrow()] = bytes;
    }
    check(sub->Commit(STGC_DEFAULT));
    check(root->Commit(STGC_DEFAULT));
  }
  EXPECT_TRUE(reopened() == expected);
}

TEST_F(RoundTrip, NumbersOfElementsFromNoneToMany) {
  for (const int count : {0, 1, 2, 3, 4, 7, 8, 15, 16, 100, 1000}) {
    Contents expected;
    {
      const Ref<IStorage> root = create();
      for (int i = count; i > 0; --i) {
        const std::string name = "e" + std::to_string(i);
        expected[name] = "bytes of " + name;
        put(root.get(), BString::fromNarrow(name), expected[name]);
      }
      check(root->Commit(STGC_DEFAULT));
    }
    EXPECT_TRUE(reopened() == expected) << count;
  }
}

TEST_F(RoundTrip, FilesAroundTheSizeWhereTheFatOutgrowsTheHeader) {
  // 109 FAT sectors cover 109 * 128 sectors, themselves and the directory included.
  constexpr std::size_t kBorder = (109 * 128 - 109 - 1) * 512;
  struct {
    int more;
    std::uint32_t fatSectors, difatSectors;
  } const rows[] = {{0, 109, 0}, {1, 110, 1}, {128 * 127 * 512, 238, 2}};
  for (const auto& [more, fatSectors, difatSectors] : rows) {
    const std::string bytes = pattern(kBorder + static_cast<std::size_t>(more));
    {
      const Ref<IStorage> root = create();
      put(root.get(), u"Large", bytes);
      check(root->Commit(STGC_DEFAULT));
    }
    EXPECT_TRUE(reopened() == (Contents{{"Large", bytes}})) << more;
    const std::string file = stored();
    EXPECT_EQ(compound::loadLittle<std::uint32_t>(reinterpret_cast<const std::uint8_t*>(&file[44])),
              fatSectors);
    EXPECT_EQ(compound::loadLittle<std::uint32_t>(reinterpret_cast<const std::uint8_t*>(&file[72])),
              difatSectors);
  }
}

TEST_F(RoundTrip, AStreamOfMoreThanAHundredMegabytes) {
  constexpr std::uint32_t kPieces = 105;
  const std::string piece = pattern(1 << 20);
  {
    const Ref<IStorage> root = create();
    const Ref<IStream> stream = createStream(root.get(), u"Huge");
    for (std::uint32_t i = 0; i < kPieces; ++i) write(stream.get(), piece);
    check(root->Commit(STGC_DEFAULT));
  }
  const Ref<IStorage> root = open(kReadRoot);
  const Ref<IStream> stream = openStream(root.get(), u"Huge", kRead);
  for (std::uint32_t i = 0; i < kPieces; ++i) ASSERT_TRUE(read(stream.get(), 1 << 20) == piece) << i;
  EXPECT_EQ(read(stream.get(), 1), "");
}

TEST_F(RoundTrip, ClassIdentifiersAndDeepNesting) {
  constexpr int kDepth = 300;
  {
    const Ref<IStorage> root = create();
    check(root->SetClass(kOther));
    std::vector<Ref<IStorage>> chain{root};
    for (int i = 0; i < kDepth; ++i) {
      chain.push_back(createStorage(chain.back().get(), u"Level", i % 2 ? kTransacted : kCreate));
      check(chain.back()->SetClass(kFolder));
    }
    put(chain.back().get(), u"Bottom", "reached");
    while (!chain.empty()) {
      check(chain.back()->Commit(STGC_DEFAULT));
      chain.pop_back();
    }
  }
  const Contents contents = reopened();
  EXPECT_EQ(contents.size(), kDepth + 1u);
  EXPECT_EQ(contents.at("Level/Level/"), formatGuid(kFolder));
  EXPECT_EQ(contents.rbegin()->second, "reached");
  STATSTG stat;
  check(open(kReadRoot)->Stat(&stat));
  EXPECT_EQ(stat.clsid, kOther);
}

TEST_F(RoundTrip, WritingWhatWasReadGivesTheSameBytes) {
  {
    const Ref<IStorage> root = create();
    put(root.get(), u"Short", pattern(100));
    put(root.get(), u"Long", pattern(10000));
    put(createStorage(root.get(), u"Sub", kCreate).get(), u"Inner", pattern(5000));
    check(root->Commit(STGC_DEFAULT));
  }
  const std::string first = stored();
  {
    const Ref<IStorage> root = open();
    put(root.get(), u"Short", pattern(100));
    check(root->Commit(STGC_DEFAULT));
  }
  EXPECT_TRUE(stored() == first);
}

TEST_F(RoundTrip, ANewFileIsAnEmptyCompoundFileAtOnce) {
  create();
  EXPECT_THAT(reopened(), IsEmpty());
  EXPECT_THAT(files(), ElementsAre("p.nqp"));
}

TEST_F(RoundTrip, MoreThanTheFormatHoldsIsRefused) {
  Ref<IStorage> root = create();
  const Ref<IStream> stream = createStream(root.get(), u"Beyond");
  constexpr std::uint64_t kLimit = compound::CompoundLayout::kMaxFileSize;
  EXPECT_EQ(stream->SetSize(kLimit + 1), STG_E_MEDIUMFULL);
  check(stream->SetSize(kLimit));
  EXPECT_EQ(stream->Write("x", 1, nullptr), S_OK);
  check(stream->Seek(0, StreamSeek::End, nullptr));
  EXPECT_EQ(stream->Write("x", 1, nullptr), STG_E_MEDIUMFULL);
  EXPECT_EQ(root->Commit(STGC_DEFAULT), STG_E_MEDIUMFULL) << "the tables need room too";
  root = nullptr;
  EXPECT_THAT(reopened(), IsEmpty());
}

}  // namespace
}  // namespace forgeyard
