#include "platform/text/narrow.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "platform/text/bstring.h"

namespace forgeyard {
namespace {

struct Pair {
  const char* name;
  std::string_view narrow;
  std::u16string_view wide;
};

using namespace std::string_view_literals;

// Numbers, since a literal may not spell a lone surrogate.
constexpr char16_t kLoneHigh[] = {0xD83D, u'x', 0};
constexpr char16_t kLastHigh[] = {u'x', 0xDBFF, 0};
constexpr char16_t kLoneLow[] = {0xDC00, 0xDC7F, 0xDD00, 0xDFFF, 0};
constexpr char16_t kHighBeforePair[] = {0xD800, 0xD83D, 0xDE00, 0};
constexpr char16_t kLatin1[] = {u'c', u'a', u'f', 0xDCE9, u'.', u'c', 0};
constexpr char16_t kOverlong[] = {0xDCC0, 0xDC80, 0xDCE0, 0xDC80, 0xDC80, 0};
constexpr char16_t kTooLarge[] = {0xDCF4, 0xDC90, 0xDC80, 0xDC80, 0xDCF5, 0};
constexpr char16_t kCutShort[] = {0xDCE2, 0xDC82, u'x', 0xDCC3, 0};
constexpr char16_t kEscapeSpelled[] = {0xDCED, 0xDCB2, 0xDC80, 0xDCED, 0xDCB3, 0xDCBF, 0};
constexpr char16_t kPairSpelled[] = {0xDCED, 0xDCA0, 0xDCBD, 0xDE00, 0};
constexpr char16_t kHighThenByte[] = {0xDCED, 0xDCA0, 0xDC80, 0xDCED, 0xDCA0, 0xDC80, 0xDCFF, 0};

constexpr Pair kPairs[] = {
    {"empty", "", u""},
    {"ascii of every block length", "0123456789abcdefg", u"0123456789abcdefg"},
    {"two, three and four bytes", "\u00E9\u20AC\U0001F600", u"\u00E9\u20AC\U0001F600"},
    {"borders", "\x7F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"sv,
     u"\x7F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"sv},
    {"null character", "a\0b"sv, u"a\0b"sv},
    {"other than ascii behind a block", "01234567\u00E9", u"01234567\u00E9"},
    {"byte of another character set", "caf\xE9.c", kLatin1},
    {"overlong forms", "\xC0\x80\xE0\x80\x80", kOverlong},
    {"beyond the last code point", "\xF4\x90\x80\x80\xF5", kTooLarge},
    {"cut short", "\xE2\x82x\xC3", kCutShort},
    {"lone first half", "\xED\xA0\xBDx", kLoneHigh},
    {"lone first half at the end", "x\xED\xAF\xBF", kLastHigh},
    {"lone second halves", "\xED\xB0\x80\xED\xB1\xBF\xED\xB4\x80\xED\xBF\xBF", kLoneLow},
    {"lone first half before a pair", "\xED\xA0\x80\xF0\x9F\x98\x80", kHighBeforePair},
    {"the form of an escape", "\xED\xB2\x80\xED\xB3\xBF", kEscapeSpelled},
    {"the forms of both halves of a pair", "\xED\xA0\xBD\xED\xB8\x80", kPairSpelled},
    {"first halves before a byte that is escaped", "\xED\xA0\x80\xED\xA0\x80\xFF", kHighThenByte},
};

TEST(Narrow, ConvertsBothWays) {
  for (const Pair& pair : kPairs) {
    EXPECT_EQ(wideFromNarrow(pair.narrow), pair.wide) << pair.name;
    EXPECT_EQ(narrowFromWide(pair.wide), pair.narrow) << pair.name;
    EXPECT_EQ(BString::fromNarrow(pair.narrow).view(), pair.wide) << pair.name;
    EXPECT_EQ(BString(pair.wide).narrow(), pair.narrow) << pair.name;
  }
}

TEST(Narrow, EmptyNarrowTextIsEmptyAndNotNull) {
  EXPECT_FALSE(BString::fromNarrow("").isNull());
}

// Made of the bytes where the rules meet, so that every border shows up in a few thousand texts.
TEST(Narrow, AnyBytesComeBack) {
  constexpr std::string_view BYTES(
      "a\x7F\x80\x9F\xA0\xB0\xB2\xB3\xBF\xC0\xC3\xE0\xE2\xED\xEF\xF0\xF4\xF5\xFF\0", 20);
  std::mt19937 random(7);
  for (int i = 0; i < 50'000; ++i) {
    std::string text(random() % 24, '\0');
    for (char& c : text) c = random() % 3 == 0 ? '\xED' : BYTES[random() % BYTES.size()];
    const std::u16string wide = wideFromNarrow(text);
    ASSERT_EQ(narrowFromWide(wide), text) << testing::PrintToString(text);
    ASSERT_EQ(wide.size(), wideLength(text));
  }
}

// Escape units are left out: a few of them together may spell a character.
TEST(Narrow, AnyUnitsComeBack) {
  constexpr char16_t kUnits[] = {u'a',   0x7F,   0x80,   0x7FF,  0x800,  0xD7FF, 0xD800,
                                 0xDBFF, 0xDC00, 0xDC7F, 0xDD00, 0xDFFF, 0xE000, 0xFFFF};
  std::mt19937 random(11);
  for (int i = 0; i < 50'000; ++i) {
    std::u16string text(random() % 20, u'\0');
    for (char16_t& unit : text) unit = kUnits[random() % std::size(kUnits)];
    ASSERT_EQ(wideFromNarrow(narrowFromWide(text)), text) << testing::PrintToString(text);
  }
}

TEST(Narrow, LoneEscapeUnitsAreBytes) {
  for (unsigned byte = 0x80; byte < 0x100; ++byte) {
    const char16_t unit = static_cast<char16_t>(0xDC00 + byte);
    const std::string narrow = narrowFromWide(std::u16string_view(&unit, 1));
    EXPECT_EQ(narrow, std::string(1, static_cast<char>(byte)));
    EXPECT_EQ(wideFromNarrow(narrow), std::u16string(1, unit));
  }
}

}  // namespace
}  // namespace forgeyard
