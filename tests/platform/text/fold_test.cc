#include "platform/text/fold.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>

#include "platform/text/narrow.h"

namespace forgeyard {
namespace {

struct Case {
  std::string_view a;
  std::string_view b;
  bool equal;
};

constexpr Case kCases[] = {
    {"Main.C", "mAIN.c", true},
    {"@[`{", "@[`{", true},
    {"@", "`", false},
    {"[", "{", false},
    {"a", "ab", false},
    {"", "", true},
    {"\u00C0\u00D6\u00D8\u00DE", "\u00E0\u00F6\u00F8\u00FE", true},
    {"\u00D7", "\u00F7", false},  // the signs between the letters
    {"\u0130", "i", false},       // depends on the language
    {"\u0178\u017D", "\u00FF\u017E", true},
    {"\u0152\u0160", "\u0153\u0161", true},
    {"\u0138", "\u0139", false},
    {"\u0386\u038A\u038C\u038F\u03A9", "\u03AC\u03AF\u03CC\u03CE\u03C9", true},
    {"\u03A3\u03C2", "\u03C3\u03C3", true},  // sigma in all its forms
    {"\u0410\u042F\u0401\u0490", "\u0430\u044F\u0451\u0491", true},
    {"\u0411", "\u0432", false},
    {"\u04C0\u04C1", "\u04CF\u04C2", true},
    {"\uFF21", "\uFF41", true},
    {"\u1E9E", "\u00DF", true},  // three bytes and two
    {"\xE9", "\xC9", false},     // bytes that are no text have no case
};

TEST(Fold, ComparesWithoutRegardToCase) {
  for (const Case& c : kCases) {
    EXPECT_EQ(equalFolded(c.a, c.b), c.equal) << c.a << " and " << c.b;
    EXPECT_EQ(equalFolded(c.b, c.a), c.equal) << c.b << " and " << c.a;
    EXPECT_EQ(equalFolded(wideFromNarrow(c.a), wideFromNarrow(c.b)), c.equal) << c.a << " and " << c.b;
    EXPECT_EQ(folded(c.a) == folded(c.b), c.equal) << c.a << " and " << c.b;
  }
}

TEST(Fold, LowerCaseIsItsOwnForm) {
  for (char32_t c = 0; c < 0x11000; ++c)
    EXPECT_EQ(foldCharacter(foldCharacter(c)), foldCharacter(c)) << static_cast<std::uint32_t>(c);
}

TEST(Fold, AsciiFormLeavesOtherLettersAlone) {
  EXPECT_TRUE(equalFoldedAscii("A\u00C9z", "a\u00C9Z"));
  EXPECT_FALSE(equalFoldedAscii("\u00C9", "\u00E9"));
  EXPECT_TRUE(equalFoldedAscii(u"KEY", u"key"));
  EXPECT_FALSE(equalFoldedAscii(u"key", u"keys"));
}

}  // namespace
}  // namespace forgeyard
