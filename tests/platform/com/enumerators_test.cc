#include "platform/com/enumerators.h"

#include "tests/platform/com/live_objects.h"

namespace forgeyard {
namespace {

using Strings = ListEnumerator<IEnumString>;

Ref<IEnumString> letters(std::size_t count) {
  std::vector<BString> values;
  for (std::size_t i = 0; i < count; ++i)
    values.push_back(BString(std::u16string(1, char16_t(u'a' + i % 26))));
  return make<Strings>(std::move(values));
}

std::string taken(IEnumString* from, std::uint32_t count, HRESULT expected) {
  std::vector<BString> out(count, u"-");
  std::uint32_t fetched = 99;
  EXPECT_EQ(from->Next(count, out.data(), &fetched), expected);
  std::string all;
  for (std::uint32_t i = 0; i < fetched; ++i) all += out[i].narrow();
  for (std::uint32_t i = fetched; i < count; ++i)
    EXPECT_EQ(out[i], u"-") << "written beyond what was fetched";
  return all;
}

using Enumerators = NoObjectLeft;

TEST_F(Enumerators, GiveValuesUntilNoneAreLeft) {
  const auto walk = letters(5);
  EXPECT_EQ(taken(walk.get(), 2, S_OK), "ab");
  EXPECT_EQ(taken(walk.get(), 0, S_OK), "");
  EXPECT_EQ(taken(walk.get(), 3, S_OK), "cde");
  EXPECT_EQ(taken(walk.get(), 1, S_FALSE), "");
  EXPECT_EQ(walk->Reset(), S_OK);
  EXPECT_EQ(taken(walk.get(), 9, S_FALSE), "abcde");
}

TEST_F(Enumerators, SkipNoFurtherThanTheEnd) {
  const auto walk = letters(5);
  EXPECT_EQ(walk->Skip(3), S_OK);
  EXPECT_EQ(taken(walk.get(), 1, S_OK), "d");
  EXPECT_EQ(walk->Skip(UINT32_MAX), S_FALSE);
  EXPECT_EQ(taken(walk.get(), 1, S_FALSE), "");
}

TEST_F(Enumerators, AreWalkedWholeOnBothSidesOfABatch) {
  for (const std::size_t count : {0u, 1u, 31u, 32u, 33u, 64u, 65u, 1000u}) {
    std::size_t seen = 0;
    forEach(letters(count), [&](const BString& value) {
      EXPECT_EQ(value, std::u16string(1, char16_t(u'a' + seen % 26)));
      ++seen;
    });
    EXPECT_EQ(seen, count);
  }
}

// Foreign enumerators: one that fails, one that never says that it is at its end.
class Odd final : public ComObject<IEnumString> {
 public:
  explicit Odd(HRESULT status) : status_(status) {}
  HRESULT Next(std::uint32_t, BString* out, std::uint32_t* fetched) override {
    *fetched = given_ ? 0 : 1;
    *out = u"a";
    given_ = true;
    return status_;
  }
  HRESULT Skip(std::uint32_t) override { return S_OK; }
  HRESULT Reset() override { return S_OK; }

 private:
  HRESULT status_;
  bool given_ = false;
};

TEST_F(Enumerators, ThatFailEndTheWalkWithTheirStatus) {
  try {
    forEach(Ref<IEnumString>(make<Odd>(E_UNEXPECTED)), [](const BString&) { FAIL(); });
    FAIL() << "nothing thrown";
  } catch (const StatusError& error) {
    EXPECT_EQ(error.status(), E_UNEXPECTED);
  }
}

TEST_F(Enumerators, ThatGiveNothingMoreEndTheWalk) {
  int seen = 0;
  forEach(Ref<IEnumString>(make<Odd>(S_OK)), [&](const BString&) { ++seen; });
  EXPECT_EQ(seen, 1);
}

}  // namespace
}  // namespace forgeyard
