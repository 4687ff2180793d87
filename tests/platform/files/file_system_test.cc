#include "platform/files/file_system.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <memory>

#include "platform/files/host_files.h"
#include "tests/platform/support/scratch.h"
#include "tests/support/memory_files.h"

namespace forgeyard {
namespace {

// What the suite needs of a disk beside the interface.
class Disk {
 public:
  virtual ~Disk() = default;
  virtual FileSystem& files() = 0;
  virtual BString path(const std::string& name) = 0;
  // A file with a given write time in seconds.
  virtual void put(const std::string& name, const std::string& contents, int time) = 0;
};

class MemoryDisk : public Disk {
 public:
  MemoryDisk() { disk_.put(u"\\root\\x"); }
  FileSystem& files() override { return disk_; }
  BString path(const std::string& name) override { return BString::fromNarrow("\\root\\" + name); }
  void put(const std::string& name, const std::string& contents, int time) override {
    disk_.tick(time * FileTime{1'000'000'000} - disk_.now());
    disk_.put(path(name), contents);
  }

 private:
  MemoryFileSystem disk_;
};

class HostDisk : public Disk {
 public:
  FileSystem& files() override { return hostFiles(); }
  BString path(const std::string& name) override {
    return BString(toModel(scratch_.path()).path + BString::fromNarrow("\\" + name));
  }
  void put(const std::string& name, const std::string& contents, int time) override {
    std::string host = scratch_ / name;
    std::replace(host.begin(), host.end(), '\\', '/');
    writeFile(host, contents);
    const timespec times[2] = {{time, 0}, {time, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, host.c_str(), times, 0), 0);
  }

 private:
  ScratchDirectory scratch_;
};

struct Kind {
  const char* name;
  std::unique_ptr<Disk> (*make)();
};

class FileSystemTest : public testing::TestWithParam<Kind> {
 protected:
  BString at(const std::string& name) { return disk_->path(name); }
  std::string contents(const std::string& name) {
    std::string text = "(unread)";
    const std::error_code error = files_.readWhole(at(name), 1000, text);
    return error ? error.message() : text;
  }

  std::unique_ptr<Disk> disk_ = GetParam().make();
  FileSystem& files_ = disk_->files();
};
INSTANTIATE_TEST_SUITE_P(Disks, FileSystemTest,
                         testing::Values(Kind{"Memory", [] { return std::unique_ptr<Disk>(new MemoryDisk); }},
                                         Kind{"Host", [] { return std::unique_ptr<Disk>(new HostDisk); }}),
                         [](const auto& info) { return info.param.name; });

constexpr FileTime second = 1'000'000'000;

TEST_P(FileSystemTest, StatusTellsFilesFromDirectoriesAndNothing) {
  disk_->put("a.c", "text", 500);
  const auto file = files_.status(at("a.c"));
  ASSERT_TRUE(file);
  EXPECT_FALSE(file->directory);
  EXPECT_FALSE(file->readOnly);
  EXPECT_EQ(file->size, 4u);
  EXPECT_EQ(file->modified, 500 * second);
  EXPECT_EQ(files_.modified(at("a.c")), 500 * second);
  EXPECT_FALSE(files_.isDirectory(at("a.c")));

  EXPECT_TRUE(files_.isDirectory(at("")));
  EXPECT_EQ(files_.modified(at("")), std::nullopt);

  for (const char* name : {"none", "none\\deep", "a.c\\below"}) {
    EXPECT_FALSE(files_.exists(at(name))) << name;
    EXPECT_FALSE(files_.isDirectory(at(name))) << name;
    EXPECT_EQ(files_.modified(at(name)), std::nullopt) << name;
  }
  EXPECT_FALSE(files_.exists(BString()));
}

TEST_P(FileSystemTest, NamesAreFoundWithoutRegardToCase) {
  ASSERT_TRUE(files_.createDirectories(at("Source\\Inner")));
  disk_->put("Source\\Inner\\Main.c", "text", 500);
  EXPECT_EQ(files_.modified(at("SOURCE\\inner\\main.C")), 500 * second);
  EXPECT_TRUE(files_.isDirectory(at("source\\INNER\\")));
  EXPECT_TRUE(files_.createDirectories(at("source\\inner\\new")));
  EXPECT_TRUE(files_.isDirectory(at("Source\\Inner\\new")));
  EXPECT_FALSE(files_.createEmpty(at("source\\inner\\new\\marker")));
  EXPECT_FALSE(files_.deleteFile(at("source\\inner\\main.c")));
  EXPECT_FALSE(files_.exists(at("Source\\Inner\\Main.c")));
}

TEST_P(FileSystemTest, CreateDirectoriesMakesEveryLevel) {
  EXPECT_TRUE(files_.createDirectories(at("a\\b\\c")));
  EXPECT_TRUE(files_.isDirectory(at("a\\b\\c")));
  EXPECT_TRUE(files_.createDirectories(at("a\\b\\c")));
  EXPECT_TRUE(files_.createDirectories(at("a\\d\\")));
  EXPECT_TRUE(files_.isDirectory(at("a\\d")));
  disk_->put("file", "kept", 500);
  EXPECT_FALSE(files_.createDirectories(at("file\\below")));
  EXPECT_FALSE(files_.createDirectories(at("file")));
  EXPECT_EQ(contents("file"), "kept");
}

TEST_P(FileSystemTest, OneLevelNeedsItsParent) {
  EXPECT_EQ(files_.createDirectory(at("a\\b")), std::errc::no_such_file_or_directory);
  EXPECT_FALSE(files_.createDirectory(at("a")));
  EXPECT_FALSE(files_.createDirectory(at("a")));
  disk_->put("file", "", 500);
  EXPECT_EQ(files_.createDirectory(at("file")), std::errc::file_exists);
}

TEST_P(FileSystemTest, DeleteTakesWritableFilesOnly) {
  disk_->put("a.o", "", 500);
  disk_->put("kept.o", "kept", 500);
  ASSERT_FALSE(files_.setReadOnly(at("kept.o"), true));
  ASSERT_TRUE(files_.createDirectories(at("folder")));
  EXPECT_FALSE(files_.deleteFile(at("a.o")));
  EXPECT_FALSE(files_.exists(at("a.o")));
  EXPECT_EQ(files_.deleteFile(at("a.o")), std::errc::no_such_file_or_directory);
  EXPECT_EQ(files_.deleteFile(at("kept.o")), std::errc::permission_denied);
  EXPECT_EQ(contents("kept.o"), "kept");
  EXPECT_EQ(files_.deleteFile(at("folder")), std::errc::is_a_directory);
  EXPECT_TRUE(files_.isDirectory(at("folder")));
}

TEST_P(FileSystemTest, NormalAttributesMakeAFileWritable) {
  disk_->put("a.c", "", 500);
  EXPECT_FALSE(files_.isReadOnly(at("a.c")));
  EXPECT_FALSE(files_.setReadOnly(at("a.c"), true));
  EXPECT_TRUE(files_.isReadOnly(at("a.c")));
  EXPECT_FALSE(files_.setNormalAttributes(at("a.c")));
  EXPECT_FALSE(files_.isReadOnly(at("a.c")));
  EXPECT_EQ(files_.setNormalAttributes(at("none")), std::errc::no_such_file_or_directory);
  EXPECT_FALSE(files_.isReadOnly(at("none")));
}

TEST_P(FileSystemTest, CopyBringsContentsTimeAndReadOnlyState) {
  disk_->put("from.c", "new", 500);
  disk_->put("to.c", "old and longer", 700);
  ASSERT_FALSE(files_.setReadOnly(at("from.c"), true));
  EXPECT_FALSE(files_.copyFile(at("from.c"), at("to.c")));
  EXPECT_EQ(contents("to.c"), "new");
  EXPECT_EQ(files_.modified(at("to.c")), 500 * second);
  EXPECT_TRUE(files_.isReadOnly(at("to.c")));
  EXPECT_FALSE(files_.copyFile(at("from.c"), at("fresh.c")));
  EXPECT_EQ(contents("fresh.c"), "new");
}

TEST_P(FileSystemTest, CopyThatFailsLeavesTheDestination) {
  disk_->put("from.c", "new", 500);
  disk_->put("locked.c", "old", 500);
  ASSERT_FALSE(files_.setReadOnly(at("locked.c"), true));
  ASSERT_TRUE(files_.createDirectories(at("folder")));
  EXPECT_EQ(files_.copyFile(at("none.c"), at("from.c")), std::errc::no_such_file_or_directory);
  EXPECT_EQ(files_.copyFile(at("folder"), at("from.c")), std::errc::is_a_directory);
  EXPECT_EQ(files_.copyFile(at("from.c"), at("from.c")), std::errc::invalid_argument);
  EXPECT_EQ(contents("from.c"), "new");
  EXPECT_EQ(files_.copyFile(at("from.c"), at("locked.c")), std::errc::permission_denied);
  EXPECT_EQ(contents("locked.c"), "old");
  EXPECT_EQ(files_.copyFile(at("from.c"), at("folder")), std::errc::is_a_directory);
  EXPECT_EQ(files_.copyFile(at("from.c"), at("nowhere\\to.c")), std::errc::no_such_file_or_directory);
}

TEST_P(FileSystemTest, EmptyFileHasThePresentTime) {
  disk_->put("old", "text", 500);
  EXPECT_FALSE(files_.createEmpty(at("old")));
  EXPECT_EQ(contents("old"), "");
  EXPECT_FALSE(files_.createEmpty(at("new")));
  EXPECT_TRUE(files_.modified(at("new")) >= files_.modified(at("old")));
  EXPECT_EQ(files_.createEmpty(at("none\\new")), std::errc::no_such_file_or_directory);
  EXPECT_EQ(files_.createEmpty(at("")), std::errc::is_a_directory);

  disk_->put("locked", "kept", 500);
  ASSERT_FALSE(files_.setReadOnly(at("locked"), true));
  EXPECT_EQ(files_.createEmpty(at("locked")), std::errc::permission_denied);
  EXPECT_EQ(contents("locked"), "kept");
}

TEST_P(FileSystemTest, ReadWholeKeepsItsLimit) {
  disk_->put("five", "12345", 500);
  disk_->put("none", "", 500);
  std::string text = "before";
  EXPECT_EQ(files_.readWhole(at("five"), 4, text), std::errc::file_too_large);
  EXPECT_EQ(text, "before");
  EXPECT_FALSE(files_.readWhole(at("five"), 5, text));
  EXPECT_EQ(text, "12345");
  EXPECT_FALSE(files_.readWhole(at("five"), SIZE_MAX, text));
  EXPECT_EQ(text, "12345");
  EXPECT_FALSE(files_.readWhole(at("none"), 0, text));
  EXPECT_EQ(text, "");
  EXPECT_EQ(files_.readWhole(at(""), 5, text), std::errc::is_a_directory);
  EXPECT_EQ(files_.readWhole(at("missing"), 5, text), std::errc::no_such_file_or_directory);
}

}  // namespace
}  // namespace forgeyard
