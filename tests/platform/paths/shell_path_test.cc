#include "platform/paths/shell_path.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "platform/text/narrow.h"

namespace forgeyard {
namespace {

struct Case {
  std::string_view path;
  std::string_view result;
};

TEST(PathCanonicalize, ResolvesDotsAtTheEdges) {
  constexpr Case kCases[] = {
      {".", "\\"},
      {"a\\.", "a"},
      {"C:\\a\\.", "C:\\a"},
      {"C:\\.", "C:\\"},
      {"\\.", "\\"},
      {"\\\\srv\\share\\.", "\\\\srv\\share"},
      {"C:a\\..\\b", "C:\\b"},
      {"\\\\srv\\share\\..\\x", "\\\\srv\\share\\x"},
      {"C:\\a\\\\..\\b", "C:\\a\\b"},
      {"\\..", "\\"},
      {"..\\a", "\\a"},
      {"\\..\\..", "\\"},
  };
  for (const Case& c : kCases) EXPECT_EQ(PathCanonicalizeA(c.path), std::string(c.result)) << c.path;
}

TEST(PathCanonicalize, ResultStandsForItself) {
  constexpr std::string_view kParts[] = {"\\", ".", "..", "a", "C:", "b.c", "/", "\\\\"};
  std::mt19937 random(2);
  for (int i = 0; i < 20'000; ++i) {
    std::string path;
    for (auto parts = random() % 10; parts > 0; --parts) path += kParts[random() % std::size(kParts)];
    const std::optional<std::string> once = PathCanonicalizeA(path, kNoPathLimit);
    ASSERT_TRUE(once.has_value()) << path;
    // A colon may come to the front, and backslashes to the start, where they are a root.
    if (path.find(':') == path.npos && path.find("\\\\") == path.npos) {
      EXPECT_EQ(PathCanonicalizeA(*once, kNoPathLimit), once) << path;
    }
    const std::optional<std::u16string> wide = PathCanonicalizeA(wideFromNarrow(path), kNoPathLimit);
    EXPECT_EQ(narrowFromWide(wide.value()), *once) << path;
  }
}

TEST(ShellPath, LimitIsLiftedForLongPathsOfThisSystem) {
  std::string path;
  while (path.size() < 4000) path += "\\a_directory_name";
  EXPECT_EQ(PathCanonicalizeA(path), std::nullopt);
  EXPECT_EQ(PathCanonicalizeA(path + "\\.\\x\\..", kNoPathLimit), path);
  EXPECT_EQ(PathRelativePathToA("\\b", PathKind::Directory, path, PathKind::File), std::nullopt);
  EXPECT_EQ(PathRelativePathToA("\\b", PathKind::Directory, path, PathKind::File, kNoPathLimit), ".." + path);
  EXPECT_EQ(PathFindFileNameA(path), "a_directory_name");
  std::string longer = path;
  EXPECT_TRUE(PathAddBackslashA(longer));
  EXPECT_EQ(longer, path + "\\");
}

TEST(PathIsRelative, EmptyPathIsRelative) {
  EXPECT_TRUE(PathIsRelativeA(""));
}

TEST(PathIsRelative, LetterOfTwoBytesIsNoDriveInEitherForm) {
  EXPECT_TRUE(PathIsRelativeA("\u00E9:\\a"));
  EXPECT_TRUE(PathIsRelativeA(u"\u00E9:\\a"));
}

TEST(PathRelativePathTo, FindsTheWayAtTheEdges) {
  struct Way {
    std::string_view from, to;
    std::optional<std::string> result;
  };
  const Way ways[] = {
      {"\\a", "\\b", "..\\b"},
      {"\\", "\\b\\c", ".\\b\\c"},
      {"\\home\\u\\", "\\home\\u\\x", ".\\x"},
      {"\\\\srv\\one", "\\\\other\\one", std::nullopt},
      {"\\\\srv\\one", "\\\\SRV\\two", "..\\two"},
      {"C:\\a", "\\a", std::nullopt},
      {"\\STRA\u00C9E", "\\stra\u00E9e\\x", ".\\x"},
  };
  for (const Way& way : ways) {
    EXPECT_EQ(PathRelativePathToA(way.from, PathKind::Directory, way.to, PathKind::Directory), way.result)
        << way.from << " to " << way.to;
  }
}

}  // namespace
}  // namespace forgeyard
