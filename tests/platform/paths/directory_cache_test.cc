#include "platform/paths/directory_cache.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <time.h>

#include <filesystem>
#include <optional>
#include <string>

#include "tests/platform/support/temporary_directory.h"

namespace forgeyard {
namespace {

// As if the directory had last been changed at that time.
void setTime(const std::string& directory, time_t seconds, long nanoseconds = 1) {
  const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
  ASSERT_EQ(utimensat(AT_FDCWD, directory.c_str(), times, 0), 0);
}

TEST(DirectoryCache, ReadsAnUnchangedDirectoryOnce) {
  const TemporaryDirectory directory;
  for (int i = 0; i < 1000; ++i) directory.put("File" + std::to_string(i));
  setTime(directory.path(), 1'000'000);
  DirectoryCache cache;
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(cache.find(directory.path(), "no such file " + std::to_string(i)), std::nullopt);
  }
  EXPECT_EQ(cache.find(directory.path(), "FILE7"), "File7");
  EXPECT_EQ(cache.listings(), 1u);
}

TEST(DirectoryCache, ReadsAgainAfterAChange) {
  const TemporaryDirectory directory;
  setTime(directory.path(), 1'000'000);
  DirectoryCache cache;
  EXPECT_EQ(cache.find(directory.path(), "a.c"), std::nullopt);
  directory.put("A.C");
  EXPECT_EQ(cache.find(directory.path(), "a.c"), "A.C");
}

// Two changes within one step of the file system's clock leave one time. A time to come counts as fresh.
TEST(DirectoryCache, DoesNotTrustAListingReadRightAfterAChange) {
  const TemporaryDirectory directory;
  const time_t later = time(nullptr) + 3600;
  setTime(directory.path(), later);
  DirectoryCache cache;
  EXPECT_EQ(cache.find(directory.path(), "a.c"), std::nullopt);
  directory.put("A.C");
  setTime(directory.path(), later);
  EXPECT_EQ(cache.find(directory.path(), "a.c"), "A.C");
}

TEST(DirectoryCache, KeepsTheListingsUsedLastWithinItsBound) {
  const TemporaryDirectory directory;
  for (const char* name : {"one", "two", "three"}) {
    for (int i = 0; i < 10; ++i) directory.put(std::string(name) + "/File" + std::to_string(i));
    setTime(directory / name, 1'000'000);
  }
  DirectoryCache cache(30);  // two listings with their `.` and `..`
  const auto look = [&](const char* name) { EXPECT_EQ(cache.find(directory / name, "file3"), "File3"); };
  look("one");
  look("two");
  look("one");
  EXPECT_EQ(cache.listings(), 2u);
  look("three");
  look("one");
  EXPECT_EQ(cache.listings(), 3u);
  look("two");
  EXPECT_EQ(cache.listings(), 4u);
}

TEST(DirectoryCache, ServesADirectoryBeyondItsBound) {
  const TemporaryDirectory directory;
  for (int i = 0; i < 10; ++i) directory.put("File" + std::to_string(i));
  setTime(directory.path(), 1'000'000);
  DirectoryCache cache(3);
  EXPECT_EQ(cache.find(directory.path(), "file3"), "File3");
  EXPECT_EQ(cache.find(directory.path(), "file4"), "File4");
  EXPECT_EQ(cache.listings(), 1u);
}

TEST(DirectoryCache, FindsNothingInWhatIsNoDirectory) {
  const TemporaryDirectory directory;
  DirectoryCache cache;
  EXPECT_EQ(cache.find(directory.put("file"), "x"), std::nullopt);
  EXPECT_EQ(cache.find(directory / "missing", "x"), std::nullopt);
}

TEST(DirectoryCache, NoticesAnotherDirectoryInTheOldOnesPlace) {
  const TemporaryDirectory directory;
  directory.put("d/Old");
  directory.put("e/New");
  setTime(directory / "d", 1'000'000);
  setTime(directory / "e", 1'000'000);
  DirectoryCache cache;
  EXPECT_EQ(cache.find(directory / "d", "old"), "Old");
  std::filesystem::rename(directory / "d", directory / "gone");
  std::filesystem::rename(directory / "e", directory / "d");
  EXPECT_EQ(cache.find(directory / "d", "old"), std::nullopt);
  EXPECT_EQ(cache.find(directory / "d", "new"), "New");
}

}  // namespace
}  // namespace forgeyard
