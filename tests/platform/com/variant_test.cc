#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "platform/com/automation.h"
#include "tests/platform/com/live_objects.h"

namespace forgeyard {

void PrintTo(HRESULT status, std::ostream* out) {
  *out << "0x" << std::hex << static_cast<std::uint32_t>(code(status)) << std::dec;
}

namespace {

class Something final : public ComObject<IUnknown> {};

const Variant kEmpty;
const Variant kNull = Variant::null();
const Variant kNoObject{Ref<IUnknown>()};

Variant text(const char* narrow) {
  return BString::fromNarrow(narrow);
}

// What a conversion gives: a value or a status.
template <class T>
struct Outcome {
  Outcome(T v) : value(std::move(v)) {}  // NOLINT: rows of tables
  Outcome(HRESULT s) : status(s) {}      // NOLINT
  HRESULT status = S_OK;
  T value{};
};

template <class T>
struct Row {
  const char* name;
  Variant from;
  Outcome<T> to;
};

template <class T>
void expectRows(HRESULT (Variant::*convert)(T*) const, T untouched, std::initializer_list<Row<T>> rows) {
  for (const Row<T>& row : rows) {
    T out = untouched;
    EXPECT_EQ((row.from.*convert)(&out), row.to.status) << row.name;
    EXPECT_EQ(out, failed(row.to.status) ? untouched : row.to.value) << row.name;
  }
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHigh = std::numeric_limits<std::int32_t>::max();

TEST(VariantToInt32, FollowsTheTable) {
  expectRows<std::int32_t>(
      &Variant::toInt32, 777,
      {
          {"empty", kEmpty, 0},
          {"null", kNull, DISP_E_TYPEMISMATCH},
          {"object", kNoObject, DISP_E_TYPEMISMATCH},
          {"lowest", kLow, kLow},
          {"highest unsigned that fits", 0x7FFFFFFFu, kHigh},
          {"lowest unsigned that doesn't", 0x80000000u, DISP_E_OVERFLOW},
          {"true", true, -1},
          {"false", false, 0},
          {"half to even below", 2.5, 2},
          {"half to even above", 3.5, 4},
          {"negative half", -0.5, 0},
          {"rounds up to the highest", 2147483647.25, kHigh},
          {"rounds out of range", 2147483647.5, DISP_E_OVERFLOW},
          {"rounds down to the lowest", -2147483648.25, kLow},
          {"below the lowest", -2147483649.0, DISP_E_OVERFLOW},
          {"not a number", std::nan(""), DISP_E_OVERFLOW},
          {"infinite", kInfinity, DISP_E_OVERFLOW},
          {"text", text("42"), 42},
          {"text with sign", text("-42"), -42},
          {"text with plus", text("+42"), 42},
          {"text with blanks around", text(" \t42 "), 42},
          {"text with a fraction", text("41.5"), 42},
          {"text with an exponent", text("1e3"), 1000},
          {"highest as text", text("2147483647"), kHigh},
          {"text out of range", text("2147483648"), DISP_E_OVERFLOW},
          {"long text out of range", text("99999999999999999999999"), DISP_E_OVERFLOW},
          {"empty text", text(""), DISP_E_TYPEMISMATCH},
          {"null text", BString(), DISP_E_TYPEMISMATCH},
          {"blanks alone", text("  "), DISP_E_TYPEMISMATCH},
          {"word", text("forty"), DISP_E_TYPEMISMATCH},
          {"number and word", text("42x"), DISP_E_TYPEMISMATCH},
          {"two numbers", text("4 2"), DISP_E_TYPEMISMATCH},
          {"two signs", text("+-4"), DISP_E_TYPEMISMATCH},
          {"sign alone", text("-"), DISP_E_TYPEMISMATCH},
          {"hexadecimal", text("0x10"), DISP_E_TYPEMISMATCH},
          {"truth as text", text("true"), DISP_E_TYPEMISMATCH},
          {"digits of another script", BString(u"\u0664\u0662"), DISP_E_TYPEMISMATCH},
          {"number and terminator", BString(std::u16string_view(u"42\0", 3)), DISP_E_TYPEMISMATCH},
      });
}

TEST(VariantToUint32, FollowsTheTable) {
  expectRows<std::uint32_t>(&Variant::toUint32, 777,
                            {
                                {"empty", kEmpty, 0u},
                                {"null", kNull, DISP_E_TYPEMISMATCH},
                                {"highest", 0xFFFFFFFFu, 0xFFFFFFFFu},
                                {"positive", kHigh, 0x7FFFFFFFu},
                                {"negative", -1, DISP_E_OVERFLOW},
                                {"true", true, 0xFFFFFFFFu},
                                {"false", false, 0u},
                                {"rounds to zero", -0.5, 0u},
                                {"negative fraction", -0.75, DISP_E_OVERFLOW},
                                {"rounds up to the highest", 4294967295.25, 0xFFFFFFFFu},
                                {"rounds out of range", 4294967295.5, DISP_E_OVERFLOW},
                                {"not a number", std::nan(""), DISP_E_OVERFLOW},
                                {"highest as text", text("4294967295"), 0xFFFFFFFFu},
                                {"text out of range", text("4294967296"), DISP_E_OVERFLOW},
                                {"negative text", text("-1"), DISP_E_OVERFLOW},
                                {"word", text("many"), DISP_E_TYPEMISMATCH},
                                {"object", kNoObject, DISP_E_TYPEMISMATCH},
                            });
}

TEST(VariantToBool, FollowsTheTable) {
  for (const bool untouched : {false, true}) {
    expectRows<bool>(&Variant::toBool, untouched,
                     {
                         {"empty", kEmpty, false},
                         {"null", kNull, DISP_E_TYPEMISMATCH},
                         {"zero", 0, false},
                         {"any number", 256, true},
                         {"unsigned", 0x80000000u, true},
                         {"small fraction", 0.1, true},
                         {"minus zero", -0.0, false},
                         {"True", text("True"), true},
                         {"FALSE", text("FALSE"), false},
                         {"number as text", text("-1"), true},
                         {"zero as text", text("0"), false},
                         {"other word", text("yes"), DISP_E_TYPEMISMATCH},
                         {"longer word", text("trueish"), DISP_E_TYPEMISMATCH},
                         {"empty text", text(""), DISP_E_TYPEMISMATCH},
                         {"not a number as text", text("nan"), DISP_E_TYPEMISMATCH},
                         {"object", kNoObject, DISP_E_TYPEMISMATCH},
                     });
  }
}

TEST(VariantToDouble, FollowsTheTable) {
  expectRows<double>(&Variant::toDouble, 7.75,
                     {
                         {"empty", kEmpty, 0.0},
                         {"null", kNull, DISP_E_TYPEMISMATCH},
                         {"signed", kLow, -2147483648.0},
                         {"unsigned", 0xFFFFFFFFu, 4294967295.0},
                         {"true", true, -1.0},
                         {"text", text("-1.5E-3"), -0.0015},
                         {"point first", text(".5"), 0.5},
                         {"too large", text("1e999"), DISP_E_OVERFLOW},
                         {"infinity", text("inf"), DISP_E_TYPEMISMATCH},
                         {"not a number", text("nan"), DISP_E_TYPEMISMATCH},
                         {"exponent alone", text("e5"), DISP_E_TYPEMISMATCH},
                         {"decimal comma", text("1,5"), DISP_E_TYPEMISMATCH},
                     });
}

TEST(VariantToText, FollowsTheTable) {
  const BString untouched = u"untouched";
  expectRows<BString>(&Variant::toText, untouched,
                      {
                          {"empty", kEmpty, BString(u"")},
                          {"null", kNull, DISP_E_TYPEMISMATCH},
                          {"lowest", kLow, BString(u"-2147483648")},
                          {"highest unsigned", 0xFFFFFFFFu, BString(u"4294967295")},
                          {"true", true, BString(u"True")},
                          {"false", false, BString(u"False")},
                          {"fraction", 0.1, BString(u"0.1")},
                          {"whole", 100.0, BString(u"100")},
                          {"text", text("as it is"), BString(u"as it is")},
                          {"object", kNoObject, DISP_E_TYPEMISMATCH},
                      });
}

TEST(VariantToText, TellsNullFromEmptyText) {
  BString out = u"before";
  EXPECT_EQ(Variant(BString()).toText(&out), S_OK);
  EXPECT_TRUE(out.isNull());
  EXPECT_EQ(kEmpty.toText(&out), S_OK);
  EXPECT_FALSE(out.isNull());
}

TEST(VariantToText, GivesADoubleThatReadsBackEqual) {
  for (const double value : {0.1, 1.0 / 3, -2.2250738585072014e-308, 1.7976931348623157e308, 1e21, -0.0}) {
    BString written;
    double back = 1;
    EXPECT_EQ(Variant(value).toText(&written), S_OK);
    EXPECT_EQ(Variant(written).toDouble(&back), S_OK) << written.narrow();
    EXPECT_EQ(back, value) << written.narrow();
  }
}

using VariantObjects = NoObjectLeft;

TEST_F(VariantObjects, MadeFromAPointerAreObjects) {
  EXPECT_EQ(Variant(make<Something>().get()).type(), VARTYPE::VT_UNKNOWN);
}

TEST_F(VariantObjects, AreHeldAndGivenOut) {
  auto object = make<Something>();
  Variant held{Ref<IUnknown>(object)};
  EXPECT_EQ(referencesTo(object.get()), 2u);
  Ref<IUnknown> out;
  EXPECT_EQ(held.toUnknown(&out), S_OK);
  EXPECT_EQ(out.get(), object.get());
  held = Variant(1);
  out = nullptr;
  EXPECT_EQ(referencesTo(object.get()), 1u);
}

TEST_F(VariantObjects, AreNullForNoValueAndRefusedForOtherTypes) {
  for (const Variant& nothing : {kEmpty, kNull, kNoObject, Variant(Ref<IDispatch>())}) {
    Ref<IUnknown> out = make<Something>();
    EXPECT_EQ(nothing.toUnknown(&out), S_OK);
    EXPECT_FALSE(out);
  }
  for (const Variant& other : {Variant(0), Variant(0u), Variant(false), Variant(0.0), text("")}) {
    Ref<IUnknown> out = make<Something>();
    EXPECT_EQ(other.toUnknown(&out), DISP_E_TYPEMISMATCH);
    EXPECT_FALSE(out);
  }
}

TEST(Variant, KnowsItsType) {
  EXPECT_EQ(kEmpty.type(), VARTYPE::VT_EMPTY);
  EXPECT_EQ(kNull.type(), VARTYPE::VT_NULL);
  EXPECT_EQ(Variant(1).type(), VARTYPE::VT_I4);
  EXPECT_EQ(Variant(1u).type(), VARTYPE::VT_UI4);
  EXPECT_EQ(Variant(true).type(), VARTYPE::VT_BOOL);
  EXPECT_EQ(Variant(1.0).type(), VARTYPE::VT_R8);
  EXPECT_EQ(Variant(u"text").type(), VARTYPE::VT_BSTR);
  EXPECT_EQ(Variant(Ref<IDispatch>()).type(), VARTYPE::VT_DISPATCH);
  EXPECT_EQ(kNoObject.type(), VARTYPE::VT_UNKNOWN);
}

// A pointer would convert to true if truth were taken from anything but bool.
static_assert(std::is_constructible_v<Variant, bool>);
static_assert(!std::is_constructible_v<Variant, const char*>);
static_assert(!std::is_constructible_v<Variant, void*>);

}  // namespace
}  // namespace forgeyard
