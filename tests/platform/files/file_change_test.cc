// Real changes by another process between two questions: each has to be noticed, and what was left alone
// must not be read again.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/files/file_change_watch.h"
#include "platform/files/file_time_cache.h"
#include "platform/files/host_files.h"
#include "tests/platform/support/scratch.h"

namespace forgeyard {
namespace {

namespace fs = std::filesystem;

// The host's disk, which counts questions.
class CountingFiles : public FileSystem {
 public:
  std::size_t calls = 0;

  std::optional<FileStatus> status(const BString& path) override {
    ++calls;
    return hostFiles().status(path);
  }
  bool isWatchable() const noexcept override { return true; }
  std::error_code createDirectory(const BString& path) override { return hostFiles().createDirectory(path); }
  std::error_code deleteFile(const BString& path) override { return hostFiles().deleteFile(path); }
  std::error_code copyFile(const BString& from, const BString& to) override {
    return hostFiles().copyFile(from, to);
  }
  std::error_code createEmpty(const BString& path) override { return hostFiles().createEmpty(path); }
  std::error_code setReadOnly(const BString& path, bool on) override {
    return hostFiles().setReadOnly(path, on);
  }
  std::error_code readWhole(const BString& path, std::size_t limit, std::string& contents) override {
    return hostFiles().readWhole(path, limit, contents);
  }
};

// What a tool does: a process of its own, waited for.
void runTool(const std::function<void()>& work) {
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    work();
    ::_exit(0);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

void require(bool done) {
  if (!done) ::_exit(9);
}

void makeOld(const std::string& file) {
  const timespec times[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << file;
}

// Another file, with the directory that it lies in.
void putNew(const std::string& file) {
  fs::create_directories(fs::path(file).parent_path());
  writeFile(file, "new");
}

void append(const std::string& file) {
  std::ofstream(file, std::ios::app) << "more";
}

// While it lives a superuser is a user without rights, who owns everything in the directory.
class OtherUser {
 public:
  explicit OtherUser(const std::string& directory) {
    if (::geteuid() != 0) return;
    constexpr uid_t nobody = 65534;
    EXPECT_EQ(::chown(directory.c_str(), nobody, nobody), 0);
    for (const auto& entry : fs::recursive_directory_iterator(directory)) {
      EXPECT_EQ(::chown(entry.path().c_str(), nobody, nobody), 0);
    }
    changed_ = ::seteuid(nobody) == 0;
  }
  ~OtherUser() {
    const int restored = changed_ ? ::seteuid(0) : 0;
    EXPECT_EQ(restored, 0);
  }
  OtherUser(const OtherUser&) = delete;
  OtherUser& operator=(const OtherUser&) = delete;

 private:
  bool changed_ = false;
};

class FileChangeTest : public testing::Test {
 protected:
  static constexpr FileTimeCache::Watching atOnce{.afterReads = 0, .fromSecondReading = false};

  void SetUp() override { put("p/q/bystander.h"); }

  std::string at(const std::string& name) const { return scratch_ / name; }
  static BString model(const std::string& host) { return toModel(host).path; }
  void put(const std::string& name) {
    fs::create_directories(fs::path(at(name)).parent_path());
    writeFile(at(name), "text");
    makeOld(at(name));
  }
  std::optional<FileTime> ask(const std::string& name) { return cache_.modified(model(at(name))); }
  // How many questions an answer took.
  std::size_t readsFor(const std::string& name) {
    const std::size_t before = disk_.calls;
    ask(name);
    return disk_.calls - before;
  }
  void expectKnown(const std::string& name) { EXPECT_EQ(readsFor(name), 0u) << name; }

  ScratchDirectory scratch_;
  CountingFiles disk_;
  FileTimeCache cache_{&disk_, atOnce};
};

struct Change {
  const char* name;
  void (*prepare)(const std::string& root);  // besides p/q/a.h
  const char* asked;
  bool trusted;  // whether its answer outlasts a tool that does nothing
  void (*change)(const std::string& root);
};

std::ostream& operator<<(std::ostream& out, const Change& change) {
  return out << change.name;
}

class FileChangeTable : public FileChangeTest, public testing::WithParamInterface<Change> {};

TEST_P(FileChangeTable, IsNoticed) {
  const Change& row = GetParam();
  put("p/q/a.h");
  row.prepare(scratch_.path());
  ask(row.asked);
  cache_.afterTool();  // watching begins
  const auto before = ask(row.asked);
  ask("p/q/bystander.h");
  runTool([] {});
  cache_.afterTool();
  EXPECT_EQ(readsFor(row.asked), row.trusted ? 0u : 1u);
  expectKnown("p/q/bystander.h");

  runTool([&] { row.change(scratch_.path()); });
  EXPECT_EQ(ask(row.asked), before) << "known until the tool has ended";
  cache_.afterTool();
  const auto after = ask(row.asked);
  EXPECT_EQ(after, hostFiles().modified(model(at(row.asked))));
  EXPECT_NE(after, before);
}

const auto nothing = [](const std::string&) {};

const Change fileChanges[] = {
    {"Write", nothing, "p/q/a.h", true,
     [](const std::string& r) {
       const int fd = ::open((r + "/p/q/a.h").c_str(), O_WRONLY);
       require(::pwrite(fd, "T", 1, 0) == 1);
     }},
    {"Append", nothing, "p/q/a.h", true, [](const std::string& r) { append(r + "/p/q/a.h"); }},
    {"Truncate", nothing, "p/q/a.h", true,
     [](const std::string& r) { require(::truncate((r + "/p/q/a.h").c_str(), 1) == 0); }},
    {"TouchTimes", nothing, "p/q/a.h", true,
     [](const std::string& r) { require(::utimensat(AT_FDCWD, (r + "/p/q/a.h").c_str(), nullptr, 0) == 0); }},
    {"TouchModificationAlone", nothing, "p/q/a.h", true,
     [](const std::string& r) {
       const timespec times[2] = {{0, UTIME_OMIT}, {0, UTIME_NOW}};
       require(::utimensat(AT_FDCWD, (r + "/p/q/a.h").c_str(), times, 0) == 0);
     }},
    {"MappedWrite", nothing, "p/q/a.h", true,
     [](const std::string& r) {
       const int fd = ::open((r + "/p/q/a.h").c_str(), O_RDWR);
       void* const at = ::mmap(nullptr, 4, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
       ::close(fd);
       require(at != MAP_FAILED);
       *static_cast<volatile char*>(at) = 'T';
     }},
    {"RenamedOver", [](const std::string& r) { writeFile(r + "/p/q/new.h", "new"); }, "p/q/a.h", true,
     [](const std::string& r) { fs::rename(r + "/p/q/new.h", r + "/p/q/a.h"); }},
    {"RenamedOverFromElsewhere", [](const std::string& r) { writeFile(r + "/new.h", "new"); }, "p/q/a.h",
     true, [](const std::string& r) { fs::rename(r + "/new.h", r + "/p/q/a.h"); }},
    {"Exchanged", [](const std::string& r) { writeFile(r + "/new.h", "new"); }, "p/q/a.h", true,
     [](const std::string& r) {
       require(::renameat2(AT_FDCWD, (r + "/new.h").c_str(), AT_FDCWD, (r + "/p/q/a.h").c_str(),
                           RENAME_EXCHANGE) == 0);
     }},
    {"Deleted", nothing, "p/q/a.h", true, [](const std::string& r) { fs::remove(r + "/p/q/a.h"); }},
    {"RenamedAway", nothing, "p/q/a.h", true,
     [](const std::string& r) { fs::rename(r + "/p/q/a.h", r + "/p/q/b.h"); }},
    {"DeletedAndMadeAnew", nothing, "p/q/a.h", true,
     [](const std::string& r) {
       fs::remove(r + "/p/q/a.h");
       writeFile(r + "/p/q/a.h", "text");
     }},
    {"ReplacedByADirectory", nothing, "p/q/a.h", true,
     [](const std::string& r) {
       fs::remove(r + "/p/q/a.h");
       fs::create_directory(r + "/p/q/a.h");
     }},
    {"WrittenThroughASecondName",
     [](const std::string& r) { fs::create_hard_link(r + "/p/q/a.h", r + "/other.h"); }, "p/q/a.h", false,
     [](const std::string& r) { append(r + "/other.h"); }},
    {"WrittenThroughASecondNameThatCameAndWent", nothing, "p/q/a.h", true,
     [](const std::string& r) {
       fs::create_hard_link(r + "/p/q/a.h", r + "/other.h");
       append(r + "/other.h");
       fs::remove(r + "/other.h");
     }},
    {"WrittenThroughALinkToIt",
     [](const std::string& r) { fs::create_symlink(r + "/p/q/a.h", r + "/link.h"); }, "p/q/a.h", true,
     [](const std::string& r) { append(r + "/link.h"); }},
    {"TargetOfALinkWritten", [](const std::string& r) { fs::create_symlink(r + "/p/q/a.h", r + "/link.h"); },
     "link.h", false, [](const std::string& r) { append(r + "/p/q/a.h"); }},
    {"MadeALink", [](const std::string& r) { writeFile(r + "/other.h", "other"); }, "p/q/a.h", true,
     [](const std::string& r) {
       fs::remove(r + "/p/q/a.h");
       fs::create_symlink("../../other.h", r + "/p/q/a.h");
     }},
};
INSTANTIATE_TEST_SUITE_P(OfTheFile, FileChangeTable, testing::ValuesIn(fileChanges),
                         [](const auto& info) { return std::string(info.param.name); });

// The way to the file: these void everything.
const Change wayChanges[] = {
    {"DirectoryReplaced", [](const std::string& r) { putNew(r + "/p/new/a.h"); }, "p/q/a.h", true,
     [](const std::string& r) {
       fs::rename(r + "/p/q", r + "/p/old");
       fs::rename(r + "/p/new", r + "/p/q");
     }},
    {"GrandparentReplaced", [](const std::string& r) { putNew(r + "/new/q/a.h"); }, "p/q/a.h", true,
     [](const std::string& r) {
       fs::rename(r + "/p", r + "/old");
       fs::rename(r + "/new", r + "/p");
     }},
    {"GrandparentExchanged", [](const std::string& r) { putNew(r + "/new/q/a.h"); }, "p/q/a.h", true,
     [](const std::string& r) {
       require(::renameat2(AT_FDCWD, (r + "/new").c_str(), AT_FDCWD, (r + "/p").c_str(), RENAME_EXCHANGE) ==
               0);
     }},
    {"DirectoryBecomesALink", [](const std::string& r) { putNew(r + "/p/new/a.h"); }, "p/q/a.h", true,
     [](const std::string& r) {
       fs::rename(r + "/p/q", r + "/p/old");
       fs::create_symlink("new", r + "/p/q");
     }},
    {"LinkedDirectoryRetargeted",
     [](const std::string& r) {
       fs::create_symlink("p/q", r + "/link");
       putNew(r + "/new/a.h");
     },
     "link/a.h", true,
     [](const std::string& r) {
       fs::create_symlink("new", r + "/next");
       fs::rename(r + "/next", r + "/link");
     }},
    {"LinkInALinksTargetRetargeted",
     [](const std::string& r) {
       fs::create_symlink(r + "/p/q", r + "/second");
       fs::create_symlink("p/../second/.", r + "/link");
       putNew(r + "/new/a.h");
     },
     "link/a.h", true,
     [](const std::string& r) {
       fs::remove(r + "/second");
       fs::create_symlink("new", r + "/second");
     }},
    {"TargetOfALinkedDirectoryReplaced",
     [](const std::string& r) {
       fs::create_symlink("p/q", r + "/link");
       putNew(r + "/new/a.h");
     },
     "link/a.h", true,
     [](const std::string& r) {
       fs::rename(r + "/p/q", r + "/old");
       fs::rename(r + "/new", r + "/p/q");
     }},
    {"FileWrittenThroughALinkedDirectory",
     [](const std::string& r) { fs::create_symlink("p/q", r + "/link"); }, "p/q/a.h", true,
     [](const std::string& r) { append(r + "/link/a.h"); }},
    {"FileOfALinkedDirectoryWritten", [](const std::string& r) { fs::create_symlink("p/q", r + "/link"); },
     "link/a.h", true, [](const std::string& r) { append(r + "/p/q/a.h"); }},
    {"LinksThatTurnInACircleMended",
     [](const std::string& r) {
       fs::create_symlink("second", r + "/link");
       fs::create_symlink("link", r + "/second");
     },
     "link/a.h", false,
     [](const std::string& r) {
       fs::remove(r + "/second");
       fs::create_symlink("p/q", r + "/second");
     }},
    {"DirectoryDeleted", nothing, "p/q/a.h", true, [](const std::string& r) { fs::remove_all(r + "/p"); }},
};
INSTANTIATE_TEST_SUITE_P(OfTheWay, FileChangeTable, testing::ValuesIn(wayChanges),
                         [](const auto& info) { return std::string(info.param.name); });

const Change missingChanges[] = {
    {"Created", nothing, "p/q/none.h", true, [](const std::string& r) { append(r + "/p/q/none.h"); }},
    {"MovedIn", [](const std::string& r) { writeFile(r + "/new.h", "new"); }, "p/q/none.h", true,
     [](const std::string& r) { fs::rename(r + "/new.h", r + "/p/q/none.h"); }},
    {"LinkedIn", nothing, "p/q/none.h", true,
     [](const std::string& r) { fs::create_hard_link(r + "/p/q/a.h", r + "/p/q/none.h"); }},
    {"AnotherSpellingCreated", nothing, "p/q/none.h", true,
     [](const std::string& r) { append(r + "/p/q/None.H"); }},
    {"AnotherSpellingBeyondAscii", nothing, "p/q/n\u00f6.h", true,
     [](const std::string& r) { append(r + "/p/q/N\u00d6.h"); }},
    {"BlankForANoBreakSpace", nothing, "p/q/my\u00a0file.h", true,
     [](const std::string& r) { append(r + "/p/q/My file.h"); }},
    {"TargetOfADanglingLinkCreated",
     [](const std::string& r) { fs::create_symlink(r + "/new.h", r + "/p/q/none.h"); }, "p/q/none.h", false,
     [](const std::string& r) { append(r + "/new.h"); }},
    {"TargetOfAnotherSpellingsDanglingLinkCreated",
     [](const std::string& r) { fs::create_symlink(r + "/new.h", r + "/p/q/None.h"); }, "p/q/none.h", false,
     [](const std::string& r) { append(r + "/new.h"); }},
    {"DirectoryAndFileCreated", nothing, "p/none/a.h", false,
     [](const std::string& r) {
       fs::create_directory(r + "/p/none");
       append(r + "/p/none/a.h");
     }},
    {"AnotherSpellingOfItsDirectoryCreated", nothing, "p/none/a.h", false,
     [](const std::string& r) {
       fs::create_directory(r + "/p/None");
       append(r + "/p/None/a.h");
     }},
    {"ExactSpellingCreatedBesideAnother", nothing, "p/q/A.H", false,
     [](const std::string& r) { append(r + "/p/q/A.H"); }},
    {"FoundByAnotherSpellingAndWritten", nothing, "p/q/A.H", false,
     [](const std::string& r) { append(r + "/p/q/a.h"); }},
};
INSTANTIATE_TEST_SUITE_P(OfWhatWasMissing, FileChangeTable, testing::ValuesIn(missingChanges),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(FileChangeTest, OnlyWhatChangedIsReadAgain) {
  std::vector<std::string> names;
  names.reserve(100);
  for (int i = 0; i < 100; ++i)
    names.push_back("p/d" + std::to_string(i % 7) + "/f" + std::to_string(i) + ".h");
  for (const std::string& name : names) put(name);
  cache_.afterTool();
  for (int run = 0; run < 10; ++run) {
    disk_.calls = 0;
    for (const std::string& name : names) ask(name);
    EXPECT_EQ(disk_.calls, run == 0 ? names.size() : 2u);
    runTool([&] {
      append(at(names[static_cast<std::size_t>(run)]));
      fs::remove(at(names[50]));
      writeFile(at(names[50]), "anew");
      writeFile(at("p/d0/unrelated" + std::to_string(run)), "");
    });
    cache_.afterTool();
  }
}

TEST_F(FileChangeTest, PermissionToReadIsPartOfTheAnswer) {
  put("p/q/a.h");
  // A superuser may read everything, so the questions are asked as somebody else.
  const OtherUser other(scratch_.path());
  for (const auto& [path, closed] : {std::pair("p/q/a.h", 0200), std::pair("p/q", 0000)}) {
    cache_.invalidate();
    cache_.afterTool();
    EXPECT_TRUE(ask("p/q/a.h"));
    ASSERT_EQ(::chmod(at(path).c_str(), static_cast<mode_t>(closed)), 0);
    cache_.afterTool();
    EXPECT_FALSE(ask("p/q/a.h")) << path;
    ASSERT_EQ(::chmod(at(path).c_str(), 0755), 0);
    cache_.afterTool();
    EXPECT_TRUE(ask("p/q/a.h")) << path;
  }
}

TEST_F(FileChangeTest, ChangeOfTheDirectorysPermissionsVoidsAll) {
  cache_.afterTool();
  ask("p/q/bystander.h");
  runTool([&] { require(::chmod(at("p").c_str(), 0700) == 0); });
  cache_.afterTool();
  EXPECT_EQ(readsFor("p/q/bystander.h"), 1u);
}

TEST_F(FileChangeTest, FileMovedToAnotherKnownNameIsFollowedThere) {
  put("p/q/a.h");
  cache_.afterTool();
  ask("p/q/a.h");
  ask("p/q/b.h");
  runTool([&] { fs::rename(at("p/q/a.h"), at("p/q/b.h")); });
  cache_.afterTool();
  const auto moved = ask("p/q/b.h");
  EXPECT_TRUE(moved);
  EXPECT_FALSE(ask("p/q/a.h"));
  runTool([&] { append(at("p/q/b.h")); });
  cache_.afterTool();
  EXPECT_NE(ask("p/q/b.h"), moved);
  runTool([] {});
  cache_.afterTool();
  expectKnown("p/q/b.h");
  expectKnown("p/q/a.h");
}

TEST_F(FileChangeTest, MoreEventsThanTheQueueHoldsVoidEverything) {
  std::size_t limit = 0;
  std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> limit;
  put("p/q/a.h");
  cache_.afterTool();
  ask("p/q/a.h");
  ask("p/q/bystander.h");
  runTool([&] {
    // In turn, since equal events in a row count as one.
    const int x = ::open(at("p/q/x").c_str(), O_CREAT | O_RDONLY, 0600);
    const int y = ::open(at("p/q/y").c_str(), O_CREAT | O_RDONLY, 0600);
    for (std::size_t i = 0; i <= limit / 2; ++i) require(::fchmod(x, 0600) == 0 && ::fchmod(y, 0600) == 0);
    append(at("p/q/a.h"));
  });
  cache_.afterTool();
  EXPECT_EQ(readsFor("p/q/bystander.h"), 1u);
  EXPECT_EQ(ask("p/q/a.h"), hostFiles().modified(model(at("p/q/a.h"))));
}

TEST_F(FileChangeTest, LimitOfWatchesEndsWatchingForTheBuild) {
  FileTimeCache limited(&disk_, {.afterReads = 0, .maximumWatches = 8, .fromSecondReading = false});
  put("p/q/a.h");
  const BString path = model(at("p/q/a.h"));
  const BString bystander = model(at("p/q/bystander.h"));
  limited.afterTool();
  limited.modified(bystander);
  for (int i = 0; i < 12; ++i) {
    put("p/q/more" + std::to_string(i));
    limited.modified(model(at("p/q/more" + std::to_string(i))));
  }
  for (int run = 0; run < 3; ++run) {
    limited.modified(path);
    disk_.calls = 0;
    limited.modified(path);
    EXPECT_EQ(disk_.calls, 0u);
    runTool([&] { append(at("p/q/a.h")); });
    limited.afterTool();
    EXPECT_EQ(limited.modified(path), hostFiles().modified(path));
    limited.modified(bystander);
    EXPECT_EQ(disk_.calls, 2u);
  }
}

TEST_F(FileChangeTest, InvalidateEndsTrust) {
  cache_.afterTool();
  ask("p/q/bystander.h");
  cache_.invalidate();
  EXPECT_EQ(readsFor("p/q/bystander.h"), 1u);
}

TEST_F(FileChangeTest, WatchingWaitsUntilItIsWorthItsCost) {
  FileTimeCache patient(&disk_, {.afterReads = 3});
  const BString path = model(at("p/q/bystander.h"));
  std::vector<std::size_t> reads;
  for (int run = 0; run < 8; ++run) {
    disk_.calls = 0;
    patient.modified(path);
    reads.push_back(disk_.calls);
    patient.afterTool();
  }
  // The first reading isn't a repetition, and of those after watching began only the second is watched.
  EXPECT_EQ(reads, (std::vector<std::size_t>{1, 1, 1, 1, 1, 1, 0, 0}));
}

TEST_F(FileChangeTest, StampHoldsAsLongAsTheAnswer) {
  put("p/q/a.h");
  cache_.afterTool();
  FileTimeCache::Stamp changed;
  FileTimeCache::Stamp kept;
  EXPECT_FALSE(cache_.isCurrent(changed));
  cache_.modified(model(at("p/q/a.h")), changed);
  cache_.modified(model(at("p/q/bystander.h")), kept);
  runTool([&] { append(at("p/q/a.h")); });
  EXPECT_TRUE(cache_.isCurrent(changed));
  cache_.afterTool();
  EXPECT_FALSE(cache_.isCurrent(changed));
  EXPECT_TRUE(cache_.isCurrent(kept));
  cache_.invalidate();
  EXPECT_FALSE(cache_.isCurrent(kept));
}

TEST_F(FileChangeTest, FilesThatTheSystemMakesUpAreNotTrusted) {
  FileTimeCache cache(&disk_, atOnce);
  for (const BString& path : {BString(u"\\proc\\self\\status"), BString(u"\\sys\\kernel\\notes")}) {
    if (!hostFiles().exists(path)) continue;
    cache.afterTool();
    cache.modified(path);
    cache.afterTool();
    disk_.calls = 0;
    cache.modified(path);
    EXPECT_EQ(disk_.calls, 1u) << path.narrow();
  }
}

}  // namespace
}  // namespace forgeyard
