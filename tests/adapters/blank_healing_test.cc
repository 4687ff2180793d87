#include "adapters/common/blank_healing.h"

#include <gtest/gtest.h>

#include <set>

namespace forgeyard {
namespace {

const std::set<std::string> FILES = {R"(\home\u\My Files\a.c)", R"(\home\u\b.c)", "C:\\My  Dir",
                                     R"(\home\u\My)"};

TEST(BlankHealing, JoinsTheWordsOfOneExistingPath) {
  const struct {
    const char* name;
    std::vector<std::string> words;
    std::string path;
    std::size_t joined;
  } cases[] = {
      {"blank in a directory", {R"(\home\u\My)", R"(Files\a.c)", "-o"}, R"(\home\u\My)", 0},
      {"nothing to heal", {R"(\home\u\b.c)", R"(Files\a.c)"}, R"(\home\u\b.c)", 0},
      {"no file that way", {R"(\home\u\none)", R"(Files\a.c)"}, R"(\home\u\none)", 0},
      {"an option ends it", {R"(\home\u\My)", "-g", R"(Files\a.c)"}, R"(\home\u\My)", 0},
      {"relative path", {"My", R"(Files\a.c)"}, "My", 0},
      {"two blanks are lost", {"C:\\My", "Dir"}, "C:\\My", 0},
  };
  for (const auto& [name, words, path, joined] : cases) {
    const Healed healed =
        healExisting(words[0], words, 0, [](const std::string& text) { return FILES.contains(text); });
    EXPECT_EQ(healed.path, path) << name;
    EXPECT_EQ(healed.joined, joined) << name;
  }
  // Where the beginning is no file itself.
  const std::vector<std::string> words = {"-c", R"(\home\u\My)", R"(Files\a.c)", "-o"};
  const auto isSource = [](const std::string& text) { return text.ends_with("a.c"); };
  EXPECT_EQ(healExisting(words[1], words, 1, isSource).path, R"(\home\u\My Files\a.c)");
}

TEST(BlankHealing, AnOutputTakesTheLongestJoiningThatFits) {
  const std::vector<std::string> words = {R"(-o\out\a)", "b", "c.obj", R"(\home\u\b.c)"};
  const auto fits = [](const std::string& text) { return text.ends_with("b") || text.ends_with("c.obj"); };
  const Healed healed = healOutput(R"(\out\a)", words, 0, fits);
  EXPECT_EQ(healed.path, R"(\out\a b c.obj)");
  EXPECT_EQ(healed.joined, 2U);
  EXPECT_EQ(healOutput(R"(\out\a)", words, 0, [](const std::string&) { return false; }).joined, 0U);
}

}  // namespace
}  // namespace forgeyard
