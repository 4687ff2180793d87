#include "platform/files/file_time_cache.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/memory_files.h"

namespace forgeyard {
namespace {

class FileTimeCacheTest : public testing::Test {
 protected:
  MemoryFileSystem disk_;
  FileTimeCache cache_{&disk_};
};

TEST_F(FileTimeCacheTest, AsksTheDiskOnceForEachPath) {
  disk_.put(u"\\p\\a.c");
  const FileTime put = disk_.now();
  const BString path(u"\\p\\a.c");
  const BString sameText(u"\\p\\a.c");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(cache_.modified(path), put);
    EXPECT_EQ(cache_.modified(sameText), put);
    EXPECT_TRUE(cache_.exists(path));
    EXPECT_EQ(cache_.modified(u"\\p\\none.c"), std::nullopt);
    EXPECT_FALSE(cache_.exists(u"\\p\\none.c"));
  }
  EXPECT_EQ(disk_.statusCalls(), 2u);
}

TEST_F(FileTimeCacheTest, KeepsTheOldTimeUntilItIsInvalidated) {
  disk_.put(u"\\p\\a.c");
  const auto before = cache_.modified(u"\\p\\a.c");
  disk_.tick();
  disk_.touch(u"\\p\\a.c");
  EXPECT_EQ(cache_.modified(u"\\p\\a.c"), before);
  cache_.invalidate();
  EXPECT_EQ(cache_.modified(u"\\p\\a.c"), disk_.now());
  cache_.invalidate();
  ASSERT_FALSE(disk_.deleteFile(u"\\p\\a.c"));
  EXPECT_FALSE(cache_.exists(u"\\p\\a.c"));
}

TEST_F(FileTimeCacheTest, ForgetsOnePathAlone) {
  disk_.put(u"\\p\\a.o");
  disk_.put(u"\\p\\b.o");
  cache_.forget(u"\\p\\a.o");
  const auto before = cache_.modified(u"\\p\\b.o");
  cache_.modified(u"\\p\\a.o");
  disk_.tick();
  disk_.touch(u"\\p\\a.o");
  disk_.touch(u"\\p\\b.o");
  cache_.forget(u"\\p\\a.o");
  cache_.forget(u"\\p\\never-asked");
  EXPECT_EQ(cache_.modified(u"\\p\\a.o"), disk_.now());
  EXPECT_EQ(cache_.modified(u"\\p\\b.o"), before);
}

TEST_F(FileTimeCacheTest, DirectoryExistsAndHasNoTimeToCompare) {
  disk_.put(u"\\p\\a.c");
  EXPECT_TRUE(cache_.exists(u"\\p"));
  EXPECT_EQ(cache_.modified(u"\\p"), std::nullopt);
}

TEST_F(FileTimeCacheTest, NullAndEmptyPathAreOneMissingFile) {
  EXPECT_FALSE(cache_.exists(BString()));
  EXPECT_FALSE(cache_.exists(u""));
  EXPECT_EQ(disk_.statusCalls(), 1u);
}

TEST_F(FileTimeCacheTest, HoldsManyPathsOverManyRuns) {
  std::vector<BString> paths;
  for (int i = 0; i < 5000; ++i) {
    paths.push_back(BString::fromNarrow("\\p\\f" + std::to_string(i) + ".h"));
    disk_.tick();
    disk_.put(paths.back());
  }
  for (std::size_t run = 1; run <= 3; ++run) {
    for (int repeat = 0; repeat < 2; ++repeat) {
      for (const BString& path : paths)
        ASSERT_EQ(cache_.modified(path), disk_.modified(path)) << path.narrow();
    }
    // Half of the disk's questions are the test's own.
    EXPECT_EQ(disk_.statusCalls(), run * 3 * paths.size());
    cache_.invalidate();
  }
}

TEST(FileTimeCacheDefault, ReadsThroughTheProcessesDisk) {
  MemoryFileSystem disk;
  disk.put(u"\\p\\a.c");
  FileTimeCache cache;
  const ScopedFileSystem scoped(disk);
  EXPECT_EQ(cache.modified(u"\\p\\a.c"), disk.now());
}

TEST_F(FileTimeCacheTest, PrefetchAsksForEachUnknownPathOnce) {
  std::vector<BString> paths;
  for (int i = 0; i < 3000; ++i) {
    paths.push_back(BString::fromNarrow("\\p\\" + std::to_string(i) + ".c"));
    if (i % 3 != 0) disk_.put(paths.back());
    if (i % 100 == 0) disk_.tick();
  }
  cache_.modified(paths[5]);
  cache_.prefetch(paths);
  EXPECT_EQ(disk_.statusCalls(), paths.size());
  for (const BString& path : paths) EXPECT_EQ(cache_.modified(path), disk_.modified(path)) << path.narrow();
  EXPECT_EQ(disk_.statusCalls(), 2 * paths.size()) << "half of them by this test";
  cache_.afterTool();
  cache_.modified(paths[5]);
  EXPECT_EQ(disk_.statusCalls(), 2 * paths.size() + 1);
}

}  // namespace
}  // namespace forgeyard
