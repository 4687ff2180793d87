#include "platform/files/host_files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/spelled_host.h"
#include "tests/platform/support/scratch.h"

namespace forgeyard {
namespace {

using testing::HasSubstr;

class HostFilesTest : public testing::Test {
 protected:
  BString model(const std::string& name) const { return toModel(scratch_ / name).path; }

  ScratchDirectory scratch_;
};

TEST_F(HostFilesTest, TimesHaveNanoseconds) {
  writeFile(scratch_ / "a.c", "");
  const timespec times[2] = {{1, 0}, {1'234'567'890, 123'456'789}};
  ASSERT_EQ(::utimensat(AT_FDCWD, (scratch_ / "a.c").c_str(), times, 0), 0);
  EXPECT_EQ(hostFiles().modified(model("a.c")), 1'234'567'890'123'456'789);
}

TEST_F(HostFilesTest, FileThatCannotBeOpenedHasNoTime) {
  writeFile(scratch_ / "closed.h", "");
  ::chmod((scratch_ / "closed.h").c_str(), 0200);
  // A superuser can open everything, so the question is asked as somebody else.
  const bool isRoot = ::geteuid() == 0;
  if (isRoot) {
    ASSERT_EQ(::chown(scratch_.path().c_str(), 65534, 65534), 0);
    ASSERT_EQ(::chown((scratch_ / "closed.h").c_str(), 65534, 65534), 0);
    ASSERT_EQ(::seteuid(65534), 0);
  }
  const bool exists = hostFiles().exists(model("closed.h"));
  const auto time = hostFiles().modified(model("closed.h"));
  const int restored = isRoot ? ::seteuid(0) : 0;
  ASSERT_EQ(restored, 0);
  EXPECT_TRUE(exists);
  EXPECT_EQ(time, std::nullopt);
}

TEST_F(HostFilesTest, LinksAreFollowedAndDeletedThemselves) {
  writeFile(scratch_ / "target.c", "text");
  std::filesystem::create_symlink("target.c", scratch_ / "link.c");
  std::filesystem::create_symlink("none", scratch_ / "dangling.c");
  EXPECT_EQ(hostFiles().status(model("link.c"))->size, 4u);
  EXPECT_FALSE(hostFiles().exists(model("dangling.c")));
  EXPECT_FALSE(hostFiles().deleteFile(model("link.c")));
  EXPECT_EQ(readFile(scratch_ / "target.c"), "text");
}

TEST_F(HostFilesTest, CopyOverALinkKeepsTheLink) {
  writeFile(scratch_ / "from.c", "new");
  writeFile(scratch_ / "target.c", "old");
  std::filesystem::create_symlink("target.c", scratch_ / "link.c");
  EXPECT_FALSE(hostFiles().copyFile(model("from.c"), model("link.c")));
  EXPECT_TRUE(std::filesystem::is_symlink(scratch_ / "link.c"));
  EXPECT_EQ(readFile(scratch_ / "target.c"), "new");
  EXPECT_EQ(hostFiles().copyFile(model("link.c"), model("target.c")), std::errc::invalid_argument);
}

// As on a full disk: the kernel refuses further bytes in the middle of the copy.
TEST_F(HostFilesTest, CopyThatRunsOutOfRoomLeavesNothingBehind) {
  writeFile(scratch_ / "from.c", std::string(300'000, 'n'));
  writeFile(scratch_ / "to.c", "old");
  rlimit previous{};
  ::getrlimit(RLIMIT_FSIZE, &previous);
  const auto action = ::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{200'000, previous.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const std::error_code error = hostFiles().copyFile(model("from.c"), model("to.c"));
  ::setrlimit(RLIMIT_FSIZE, &previous);
  ::signal(SIGXFSZ, action);
  EXPECT_EQ(error, std::errc::file_too_large);
  EXPECT_EQ(readFile(scratch_ / "to.c"), "old");
  const std::filesystem::directory_iterator left(scratch_.path());
  EXPECT_EQ(std::distance(begin(left), end(left)), 2);
}

TEST_F(HostFilesTest, OnlyRegularFilesAreReadAndCopied) {
  ASSERT_EQ(::mkfifo((scratch_ / "fifo").c_str(), 0600), 0);
  writeFile(scratch_ / "a.c", "text");
  std::string text;
  EXPECT_EQ(hostFiles().readWhole(model("fifo"), 10, text), std::errc::invalid_argument);
  EXPECT_EQ(hostFiles().copyFile(model("fifo"), model("b.c")), std::errc::invalid_argument);
  EXPECT_EQ(hostFiles().copyFile(model("a.c"), model("fifo")), std::errc::invalid_argument);
}

TEST_F(HostFilesTest, FileOfUnknownSizeIsReadToItsEnd) {
  std::string text;
  EXPECT_FALSE(hostFiles().readWhole(u"\\proc\\self\\status", 100'000, text));
  EXPECT_THAT(text, HasSubstr("Name:"));
  EXPECT_EQ(hostFiles().readWhole(u"\\proc\\self\\status", 100, text), std::errc::file_too_large);
}

TEST_F(HostFilesTest, PlacesAreSpelledAsTheDiskHasThem) {
  std::filesystem::create_directories(scratch_ / "Obj/Inner");
  writeFile(scratch_ / "Obj/Main.o", "");
  EXPECT_EQ(toHost(model("OBJ/main.O")), scratch_ / "Obj/Main.o");
  EXPECT_EQ(toHost(model("obj/inner/New.o")), scratch_ / "Obj/Inner/New.o");
  EXPECT_EQ(existingHost(model("obj/inner/New.o")), std::nullopt);
  EXPECT_EQ(existingHost(model("obj/INNER")), scratch_ / "Obj/Inner");
}

TEST_F(HostFilesTest, ExactSpellingWins) {
  writeFile(scratch_ / "A.c", "upper");
  writeFile(scratch_ / "a.c", "lower");
  std::string text;
  EXPECT_FALSE(hostFiles().readWhole(model("a.c"), 10, text));
  EXPECT_EQ(text, "lower");
  EXPECT_FALSE(hostFiles().readWhole(model("A.c"), 10, text));
  EXPECT_EQ(text, "upper");
}

class DrivesTest : public HostFilesTest {
 protected:
  void SetUp() override { reloadDrives(); }
  void TearDown() override {
    ::unsetenv("FORGEYARD_REGISTRY");
    reloadDrives();
  }
  void setDrives(const std::string& lines) {
    writeFile(scratch_ / "registry", "[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Drives]\n" + lines);
    reloadDrives();
  }
  ScopedVariable registry_{"FORGEYARD_REGISTRY", scratch_ / "registry"};
};

TEST_F(DrivesTest, RegistrySaysWhereADriveLies) {
  setDrives("C:=" + (scratch_ / "disk") + "\nD:=relative\nbad=/x\n");
  ASSERT_TRUE(hostFiles().createDirectories(u"C:\\proj\\obj"));
  EXPECT_TRUE(std::filesystem::is_directory(scratch_ / "disk/proj/obj"));
  EXPECT_TRUE(hostFiles().isDirectory(u"c:\\PROJ"));
  EXPECT_EQ(toHost(u"C:\\proj\\a.c"), scratch_ / "disk/proj/a.c");
  EXPECT_EQ(toHost(u"D:\\proj"), std::nullopt);
}

TEST_F(DrivesTest, DriveThatIsNotMappedHoldsNothing) {
  setDrives("");
  EXPECT_EQ(toHost(u"Q:\\a.c"), std::nullopt);
  EXPECT_FALSE(hostFiles().exists(u"Q:\\"));
  EXPECT_FALSE(hostFiles().createDirectories(u"Q:\\a\\b"));
  EXPECT_EQ(hostFiles().createEmpty(u"Q:\\a"), std::errc::no_such_file_or_directory);
  EXPECT_TRUE(hostFiles().isDirectory(u"Z:\\"));
  EXPECT_EQ(toHost(u"Z:\\"), "/");
}

// The conversion in place must say what the table of drives says.
TEST(SpelledHost, AgreesWithTheTableOfDrives) {
  for (const std::u16string& path : std::vector<std::u16string>{
           u"\\", u"\\a", u"\\home\\u\\a.c", u"\\home/u\\a.c", u"\\home\\u\\", u"\\a\\\\b", u"\\a\\.\\..\\b",
           u"\\\\server\\share", u"\\/a", u"Z:\\a", u"Q:\\a", u"a.c", u"src\\a.c", u"\\a b\\\u00e4.c", u"",
           std::u16string(u"\\a\0b", 4), u"\\" + std::u16string(510, u'x'),
           u"\\" + std::u16string(600, u'x')}) {
    const SpelledHost spelled(path);
    const auto expected = spelledHost(path);
    const std::string shown = BString(path).narrow();
    ASSERT_EQ(static_cast<bool>(spelled), expected.has_value()) << shown;
    if (expected) {
      EXPECT_EQ(spelled.c_str(), *expected) << shown;
    }
  }
}

TEST(ToModel, SpellsHostPaths) {
  struct Case {
    const char* host;
    const char16_t* model;
  };
  const Case cases[] = {
      {"/", u"\\"},
      {"/home/u/p", u"\\home\\u\\p"},
      {"/home/u/p/", u"\\home\\u\\p"},
      {"/home//u/./x/../p", u"\\home\\u\\p"},
      {"/../a", u"\\a"},
      {"/home/\xc3\xa4", u"\\home\\\u00e4"},
  };
  for (const Case& row : cases) {
    const ModelPath path = toModel(row.host);
    EXPECT_EQ(path.error, "") << row.host;
    EXPECT_EQ(path.path.narrow(), BString(row.model).narrow()) << row.host;
  }
}

TEST(ToModel, RefusesWhatTheModelCannotSpell) {
  const ModelPath backslash = toModel("/home/a\\b/c");
  EXPECT_FALSE(backslash);
  EXPECT_THAT(backslash.error, HasSubstr("/home/a\\b/c"));
  EXPECT_THAT(backslash.error, HasSubstr("backslash"));
  EXPECT_TRUE(backslash.path.isNull());
  EXPECT_FALSE(toModel(""));
}

TEST(ToModel, BytesThatAreNoTextComeBack) {
  const std::string host = "/tmp/\xff\xfe.c";
  EXPECT_EQ(spelledHost(toModel(host).path), host);
}

// Goes back to where it was.
class ScopedDirectory {
 public:
  explicit ScopedDirectory(const std::string& directory) { std::filesystem::current_path(directory); }
  ~ScopedDirectory() { std::filesystem::current_path(previous_); }

 private:
  std::filesystem::path previous_ = std::filesystem::current_path();
};

TEST_F(HostFilesTest, RelativePathsCountFromTheDirectoryAsTheUserSpellsIt) {
  std::filesystem::create_directory(scratch_ / "real");
  std::filesystem::create_symlink("real", scratch_ / "link");
  const ScopedDirectory inside(scratch_ / "link");
  {
    const ScopedVariable spelled("PWD", scratch_ / "link");
    EXPECT_EQ(toModel("src/a.c").path, model("link/src/a.c"));
    EXPECT_EQ(toModel("..").path, toModel(scratch_.path()).path);
  }
  const ScopedVariable stale("PWD", "/");
  EXPECT_EQ(toModel("a.c").path,
            toModel(std::filesystem::canonical(scratch_ / "real").string() + "/a.c").path);
}

}  // namespace
}  // namespace forgeyard
