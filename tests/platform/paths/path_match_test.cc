#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "platform/paths/shell_path.h"
#include "platform/text/narrow.h"

namespace forgeyard {
namespace {

struct Case {
  std::string_view file;
  std::string_view spec;
  bool matches;
};

constexpr Case kCases[] = {
    {"", "", true},
    {"a", "", false},
    {"a", ";", false},
    {"", "a;", true},
    {"noext", "*.*", true},
    {"noext", "*.c;*.*", false},  // means everything only when it stands alone
    {"caf\u00E9.c", "caf?.c", true},
    {"\U0001F600.c", "?.c", true},
    {"\U0001F600.c", "??.c", false},
    {"caf\u00C9.C", "CAF\u00E9.*", true},
    {"a\u00E9b\u00E9c", "*\u00C9c", true},
    {"\xE9.c", "?.C", true},
    {"\xE9.c", "\xC9.c", false},
    {"\u0416\u0443\u043A.c", "\u0436*.c", true},
    {"x\u00E9", "*?", true},
    {"\u00E9", "*??", false},
    {"ab", "*a?b", false},
    {"abaab", "*a?b", true},
};

TEST(PathMatchSpec, Matches) {
  for (const Case& c : kCases) {
    EXPECT_EQ(PathMatchSpecA(c.file, c.spec), c.matches) << c.file << " against " << c.spec;
    EXPECT_EQ(PathMatchSpecA(wideFromNarrow(c.file), wideFromNarrow(c.spec)), c.matches)
        << c.file << " against " << c.spec;
  }
}

// What the pattern means, without regard to cost.
bool plainMatch(std::string_view file, std::string_view pattern) {
  if (pattern.empty()) return file.empty();
  if (pattern[0] == '*') {
    return plainMatch(file, pattern.substr(1)) || (!file.empty() && plainMatch(file.substr(1), pattern));
  }
  return !file.empty() && (pattern[0] == '?' || pattern[0] == file[0]) &&
         plainMatch(file.substr(1), pattern.substr(1));
}

TEST(PathMatchSpec, AgreesWithTheMeaningOfItsPatterns) {
  std::mt19937 random(5);
  const auto text = [&](std::string_view letters, std::size_t longest) {
    std::string result(random() % (longest + 1), '\0');
    for (char& c : result) c = letters[random() % letters.size()];
    return result;
  };
  int matches = 0;
  for (int i = 0; i < 100'000; ++i) {
    const std::string file = text("ab", 8);
    const std::string pattern = text("ab*?", 7);
    const bool expected = plainMatch(file, pattern);
    matches += expected ? 1 : 0;
    ASSERT_EQ(PathMatchSpecA(file, pattern), expected) << file << " against " << pattern;
  }
  EXPECT_GT(matches, 10'000);
}

// With a cost that doubles for every star this would not end.
TEST(PathMatchSpec, ManyStarsStayCheap) {
  std::string spec;
  for (int i = 0; i < 1000; ++i) spec += "*a";
  const std::string file(4000, 'a');
  EXPECT_FALSE(PathMatchSpecA(file, spec + "b?"));
  EXPECT_TRUE(PathMatchSpecA(file, spec));
}

}  // namespace
}  // namespace forgeyard
