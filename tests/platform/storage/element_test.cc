#include <gmock/gmock.h>

#include "platform/storage/compound_file/element_name.h"
#include "tests/platform/storage/storage_testing.h"

namespace forgeyard {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Elements : public StorageTest {
 protected:
  Ref<IStorage> root_ = create();

  HRESULT createStatus(const BString& name, std::uint32_t mode = kCreate) {
    Ref<IStream> stream;
    return root_->CreateStream(name, mode, &stream);
  }
  HRESULT openStatus(const BString& name, std::uint32_t mode = kChange) {
    Ref<IStream> stream;
    return root_->OpenStream(name, mode, &stream);
  }
  HRESULT storageStatus(const BString& name, std::uint32_t mode = kTransacted) {
    Ref<IStorage> storage;
    return root_->OpenStorage(name, mode, &storage);
  }
};

TEST_F(Elements, NamesThatAreRefused) {
  struct {
    const char* what;
    BString name;
    HRESULT status;
  } const rows[] = {
      {"null", BString(), STG_E_INVALIDNAME},
      {"empty", u"", STG_E_INVALIDNAME},
      {"slash", u"a/b", STG_E_INVALIDNAME},
      {"backslash", u"a\\b", STG_E_INVALIDNAME},
      {"colon", u"a:b", STG_E_INVALIDNAME},
      {"exclamation mark", u"!", STG_E_INVALIDNAME},
      {"null character", std::u16string(u"a\0b", 3), STG_E_INVALIDNAME},
      {"32 units", std::u16string(32, u'x'), STG_E_INVALIDNAME},
      {"31 units", std::u16string(31, u'x'), S_OK},
      {"surrogates without a partner", std::u16string{0xDC80, u'a', 0xD800}, S_OK},
      {"blanks and dots", u" . ", S_OK},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(createStatus(row.name), row.status) << row.what;
    EXPECT_EQ(openStatus(row.name), row.status) << row.what;
  }
  const std::vector<std::string> before = namesOf(root_.get());
  check(root_->Commit(STGC_DEFAULT));
  root_ = nullptr;
  EXPECT_EQ(namesOf(open().get()), before);
}

TEST_F(Elements, ComeInDirectoryOrder) {
  for (const char16_t* name : {u"Settings", u"b", u"Component10", u"Component2", u"Connections", u"A",
                               u"\u00e9", u"_", u"Z", u"\u0416", u"Configurations", u"ba", u"AB"}) {
    put(root_.get(), name, "");
  }
  const auto order = ElementsAre("A", "b", "Z", "_", "é", "Ж", "AB", "ba", "Settings", "Component2",
                                 "Component10", "Connections", "Configurations");
  EXPECT_THAT(namesOf(root_.get()), order);
  check(root_->Commit(STGC_DEFAULT));
  root_ = nullptr;
  EXPECT_THAT(namesOf(open().get()), order);
}

TEST_F(Elements, NamesThatDifferInCaseAreOneName) {
  put(root_.get(), u"Straße", "old");
  EXPECT_EQ(get(root_.get(), u"sTRAßE"), "old");
  EXPECT_EQ(createStatus(u"STRAßE", kChange), STG_E_FILEALREADYEXISTS);
  put(root_.get(), u"STRAßE", "new");
  EXPECT_THAT(namesOf(root_.get()), ElementsAre("STRAßE")) << "the newest spelling stays";
  check(root_->DestroyElement(u"straße"));
  EXPECT_THAT(namesOf(root_.get()), IsEmpty());
}

TEST_F(Elements, UpperCaseOfSingleUnits) {
  struct {
    char16_t lower, upper;
  } const rows[] = {{u'z', u'Z'},           {u'{', u'{'},           {u'\u00e4', u'\u00c4'},
                    {u'\u00f7', u'\u00f7'}, {u'\u00df', u'\u00df'}, {u'\u00ff', u'\u0178'},
                    {u'\u0101', u'\u0100'}, {u'\u0100', u'\u0100'}, {u'\u03c9', u'\u03a9'},
                    {u'\u0451', u'\u0401'}, {u'\u1f77', u'\u1fdb'}, {u'\uff5a', u'\uff3a'},
                    {u'\u4e2d', u'\u4e2d'}, {0xD83D, 0xD83D}};
  for (const auto& [lower, upper] : rows)
    EXPECT_EQ(compound::upperCaseUnit(lower), upper) << std::hex << int{lower};
}

TEST_F(Elements, EnumerationIsOfTheMomentAndCanBeRepeated) {
  for (const char16_t* name : {u"1", u"2", u"3"}) put(root_.get(), name, "x");
  Ref<IEnumSTATSTG> enumerator;
  check(root_->EnumElements(&enumerator));
  put(root_.get(), u"4", "");
  STATSTG stats[4];
  std::uint32_t fetched = 0;
  check(enumerator->Skip(1));
  EXPECT_EQ(enumerator->Next(4, stats, &fetched), S_FALSE);
  ASSERT_EQ(fetched, 2u);
  EXPECT_EQ(stats[0].name, BString(u"2"));
  EXPECT_EQ(stats[0].size, 1u);
  check(enumerator->Reset());
  EXPECT_EQ(enumerator->Next(3, stats, nullptr), S_OK);
  EXPECT_EQ(enumerator->Skip(1), S_FALSE);
}

TEST_F(Elements, MissingOnesAndThoseOfTheOtherKindAreNotFound) {
  put(root_.get(), u"Stream", "");
  createStorage(root_.get(), u"Storage");
  EXPECT_EQ(storageStatus(u"Stream"), STG_E_FILENOTFOUND);
  EXPECT_EQ(openStatus(u"Storage"), STG_E_FILENOTFOUND);
  EXPECT_EQ(openStatus(u"None"), STG_E_FILENOTFOUND);
  EXPECT_EQ(root_->DestroyElement(u"None"), STG_E_FILENOTFOUND);
}

TEST_F(Elements, AFailedOperationNullsItsResult) {
  Ref<IStream> stream = createStream(root_.get(), u"S");
  EXPECT_EQ(root_->OpenStream(u"None", kChange, &stream), STG_E_FILENOTFOUND);
  EXPECT_EQ(stream, nullptr);
  EXPECT_EQ(root_->OpenStream(u"S", kChange, nullptr), STG_E_INVALIDPOINTER);
}

TEST_F(Elements, ModesThatAreRefused) {
  put(root_.get(), u"S", "");
  createStorage(root_.get(), u"D");
  constexpr std::uint32_t kShared = 0x40;
  EXPECT_EQ(openStatus(u"S", kCreate), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(openStatus(u"S", kTransacted), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(openStatus(u"S", kShared), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(openStatus(u"S", 3), STG_E_INVALIDPARAMETER);
  EXPECT_EQ(createStatus(u"S", kTransacted), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(storageStatus(u"D", kCreate), STG_E_INVALIDFUNCTION);
  Ref<IStorage> root;
  EXPECT_EQ(StgCreateDocfile(path("n"), kCreate, &root), STG_E_INVALIDFUNCTION)
      << "a root has to be transacted";
  EXPECT_EQ(StgCreateDocfile(path("n"), STGM_TRANSACTED, &root), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(StgOpenStorage(path(), kCreateRoot, &root), STG_E_INVALIDFUNCTION);
  EXPECT_THAT(files(), ElementsAre("p.nqp"));
}

TEST_F(Elements, ReadOnlyRootsChangeNothing) {
  put(root_.get(), u"S", "x");
  createStorage(root_.get(), u"D");
  check(root_->Commit(STGC_DEFAULT));
  root_ = nullptr;
  root_ = open(kReadRoot);
  EXPECT_EQ(createStatus(u"N"), STG_E_ACCESSDENIED);
  EXPECT_EQ(openStatus(u"S"), STG_E_ACCESSDENIED);
  EXPECT_EQ(storageStatus(u"D"), STG_E_ACCESSDENIED);
  EXPECT_EQ(root_->DestroyElement(u"S"), STG_E_ACCESSDENIED);
  EXPECT_EQ(root_->SetClass(IStream::iid), STG_E_ACCESSDENIED);
  EXPECT_EQ(root_->Commit(STGC_DEFAULT), STG_E_ACCESSDENIED);
  EXPECT_EQ(query<IRootStorage>(root_.get())->SwitchToFile(path("n")), STG_E_ACCESSDENIED);
  EXPECT_EQ(get(root_.get(), u"S"), "x");
}

TEST_F(Elements, OnlyTheRootIsARoot) {
  const Ref<IStorage> sub = createStorage(root_.get(), u"D");
  EXPECT_NE(root_.as<IRootStorage>(), nullptr);
  EXPECT_EQ(sub.as<IRootStorage>(), nullptr);
  EXPECT_TRUE(sameObject(root_.as<IRootStorage>().get(), root_.get()));
}

}  // namespace
}  // namespace forgeyard
