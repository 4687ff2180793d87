#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <filesystem>

#include "platform/storage/root_storage.h"
#include "tests/platform/storage/child.h"
#include "tests/platform/storage/faulty_calls.h"
#include "tests/platform/storage/storage_testing.h"

namespace forgeyard {
namespace {

using testing::ElementsAre;

class CommitSafety : public StorageTest {
 protected:
  CommitSafety() {
    const Ref<IStorage> root = create();
    put(root.get(), u"S", old_);
    check(root->Commit(STGC_DEFAULT));
  }

  Ref<IStorage> openFaulty() { return compound::openRoot(calls_, host(), path(), kChangeRoot); }
  std::string onDisk() { return get(open(kReadRoot).get(), u"S"); }

  const std::string old_ = pattern(5000, 1);
  const std::string new_ = pattern(1'500'000, 2);
  FaultyCalls calls_;
};

// Steps through every changing system call of a commit and lets each fail in turn.
TEST_F(CommitSafety, AFailureAtAnyPointLeavesTheOldFileAndAllowsAnotherTry) {
  struct {
    int error;
    HRESULT status;
  } const rows[] = {{ENOSPC, STG_E_MEDIUMFULL}, {EDQUOT, STG_E_MEDIUMFULL},   {EFBIG, STG_E_MEDIUMFULL},
                    {EIO, STG_E_WRITEFAULT},    {EACCES, STG_E_ACCESSDENIED}, {EROFS, STG_E_ACCESSDENIED}};
  for (const auto& [error, status] : rows) {
    for (const bool named : {false, true}) {
      calls_.noUnnamedFiles = named;
      int point = 0;
      for (bool reached = true; reached; ++point) {
        const Ref<IStorage> root = openFaulty();
        put(root.get(), u"S", new_);
        calls_.arm(FaultyCalls::Fault::Error, point, error);
        const HRESULT commit = root->Commit(STGC_ONLYIFCURRENT);
        calls_.arm(FaultyCalls::Fault::None, 0);
        reached = failed(commit);
        EXPECT_THAT(files(), ElementsAre("p.nqp")) << error << " at " << point;
        if (!reached) break;
        EXPECT_EQ(commit, status) << error << " at " << point;
        EXPECT_TRUE(get(root.get(), u"S") == new_) << "the uncommitted state stands";
        EXPECT_EQ(root->Commit(STGC_ONLYIFCURRENT), S_OK) << error << " at " << point;
        put(root.get(), u"S", old_);
        check(root->Commit(STGC_ONLYIFCURRENT));
      }
      EXPECT_GE(point, 6) << "opening, writes, two syncs, renaming";
      EXPECT_TRUE(onDisk() == new_);
      const Ref<IStorage> root = open();
      put(root.get(), u"S", old_);
      check(root->Commit(STGC_DEFAULT));
    }
  }
}

TEST_F(CommitSafety, ContentsAreDurableBeforeTheyTakeTheirPlaceAndTheNameAfterwards) {
  const Ref<IStorage> root = openFaulty();
  put(root.get(), u"S", new_);
  calls_.log.clear();
  check(root->Commit(STGC_DEFAULT));
  EXPECT_THAT(calls_.log, testing::MatchesRegex("ow+slrs"));
}

TEST_F(CommitSafety, BeforeTheLastStepTheOldFileStands) {
  for (int point = 0;; ++point) {
    {
      const Ref<IStorage> root = openFaulty();
      put(root.get(), u"S", new_);
      calls_.arm(FaultyCalls::Fault::Error, point, ENOSPC);
      const HRESULT commit = root->Commit(STGC_ONLYIFCURRENT);
      calls_.arm(FaultyCalls::Fault::None, 0);
      if (succeeded(commit)) break;
    }
    const std::string now = onDisk();
    EXPECT_TRUE(now == old_ || now == new_) << point;
    if (now == new_) break;  // only the directory's sync was left
  }
}

// The child dies at each changing system call in turn; whatever it leaves, one of the two states can be read.
TEST_F(CommitSafety, DyingAtAnyPointLeavesOneOfTheTwoStates) {
  for (const bool named : {false, true}) {
    bool finished = false;
    for (int point = 0; !finished; ++point) {
      Child child([&] {
        calls_.noUnnamedFiles = named;
        const Ref<IStorage> root = openFaulty();
        put(root.get(), u"S", new_);
        calls_.arm(FaultyCalls::Fault::Death, point);
        check(root->Commit(STGC_DEFAULT));
      });
      finished = child.wait() == 0;
      const std::string now = onDisk();
      EXPECT_TRUE(now == old_ || now == new_) << point;
      const Ref<IStorage> root = open();
      EXPECT_THAT(files(), ElementsAre("p.nqp")) << "who opens the file clears up, " << point;
      put(root.get(), u"S", old_);
      check(root->Commit(STGC_DEFAULT));
    }
  }
}

TEST_F(CommitSafety, WhatStandsInTheWayOfTheNewFileIsCleared) {
  const std::string beside = host(".p.nqp.saving");
  for (const bool named : {false, true}) {
    calls_.noUnnamedFiles = named;
    const Ref<IStorage> root = openFaulty();
    put(root.get(), u"S", new_);
    directory_.put(".p.nqp.saving", "left by a killed process");
    check(root->Commit(STGC_DEFAULT));
    EXPECT_THAT(files(), ElementsAre("p.nqp"));

    put(root.get(), u"S", old_);
    std::filesystem::create_symlink("p.nqp", beside);
    check(root->Commit(STGC_DEFAULT));
    EXPECT_THAT(files(), ElementsAre("p.nqp"));

    put(root.get(), u"S", new_);
    directory_.put(".p.nqp.saving", "somebody is at it");
    const compound::FilePlace place = compound::FilePlace::resolve(calls_, beside);
    const compound::LockedFile holder = compound::LockedFile::open(place, false);
    EXPECT_EQ(root->Commit(STGC_DEFAULT), STG_E_SHAREVIOLATION);
    EXPECT_EQ(contentOf(beside), "somebody is at it");
    std::filesystem::remove(beside);
  }
  EXPECT_TRUE(onDisk() == old_);
}

TEST_F(CommitSafety, CreatingFailsCleanlyAtAnyPoint) {
  for (const bool named : {false, true}) {
    calls_.noUnnamedFiles = named;
    for (int point = 0;; ++point) {
      calls_.arm(FaultyCalls::Fault::Error, point, EIO);
      const HRESULT status =
          guard([&] { compound::createRoot(calls_, host("new"), path("new"), kCreateRoot); });
      if (succeeded(status)) break;
      EXPECT_EQ(status, STG_E_WRITEFAULT);
      if (std::filesystem::exists(host("new"))) {
        EXPECT_EQ(openStatus(kReadRoot, "new"), S_OK) << "only the directory's sync was left";
        std::filesystem::remove(host("new"));
      }
      EXPECT_THAT(files(), ElementsAre("p.nqp"));
    }
    calls_.arm(FaultyCalls::Fault::None, 0);
    std::filesystem::remove(host("new"));
  }
}

TEST_F(CommitSafety, ALimitOfTheFileSizeIsAFullMedium) {
  Child child([&] {
    const rlimit limit{1'000'000, 1'000'000};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) ::_exit(9);
    const Ref<IStorage> root = open();
    for (const char16_t* name : {u"A", u"B", u"C", u"D", u"E"})
      put(root.get(), name, new_);  // beyond what memory keeps
    const HRESULT status = root->Commit(STGC_ONLYIFCURRENT);
    ::_exit(status == STG_E_MEDIUMFULL && get(root.get(), u"C") == new_ ? 0 : 1);
  });
  EXPECT_EQ(child.wait(), 0) << "and no signal ends the process";
  EXPECT_TRUE(onDisk() == old_);
}

TEST_F(CommitSafety, WithoutScratchFileMemoryKeepsWhatIsUncommitted) {
  const Ref<IStorage> root = openFaulty();
  calls_.arm(FaultyCalls::Fault::Error, 10, ENOSPC);
  const std::string large = pattern(9'000'000, 3);
  put(root.get(), u"L", large);
  calls_.arm(FaultyCalls::Fault::None, 0);
  EXPECT_TRUE(get(root.get(), u"L") == large);
  check(root->Commit(STGC_DEFAULT));
  EXPECT_TRUE(get(root.get(), u"L") == large);
}

TEST_F(CommitSafety, AReadOnlyDirectoryRefusesTheCommitAndKeepsTheFile) {
  std::filesystem::permissions(host(), std::filesystem::perms::all);
  std::filesystem::permissions(directory_.path(), static_cast<std::filesystem::perms>(0555));
  Child child([&] {
    if (::geteuid() == 0 && ::setresuid(65534, 65534, 65534) != 0) ::_exit(9);
    const Ref<IStorage> root = open();
    put(root.get(), u"S", new_);
    Ref<IStorage> other;
    if (StgCreateDocfile(path("other"), kCreateRoot, &other) != STG_E_ACCESSDENIED) ::_exit(2);
    ::_exit(root->Commit(STGC_ONLYIFCURRENT) == STG_E_ACCESSDENIED ? 0 : 1);
  });
  EXPECT_EQ(child.wait(), 0);
  EXPECT_TRUE(onDisk() == old_);
  std::filesystem::permissions(directory_.path(), static_cast<std::filesystem::perms>(0755));
}

TEST_F(CommitSafety, ReadOnlyFilesOpenForReadingOnly) {
  std::filesystem::permissions(host(), static_cast<std::filesystem::perms>(0444));
  EXPECT_EQ(openStatus(kChangeRoot), STG_E_ACCESSDENIED);
  Ref<IStorage> root;
  EXPECT_EQ(StgCreateDocfile(path(), kCreateRoot, &root), STG_E_ACCESSDENIED);
  EXPECT_EQ(openStatus(kReadRoot), S_OK);
}

TEST_F(CommitSafety, PermissionsGroupLinksAndAttributesSurvive) {
  ASSERT_EQ(::chmod(host().c_str(), 0640), 0);
  const bool privileged = ::chown(host().c_str(), 65534, 65534) == 0;
  const bool attributes = ::setxattr(host().c_str(), "user.note", "kept", 4, 0) == 0;
  std::filesystem::create_directory(host("sub"));
  std::filesystem::create_symlink("../p.nqp", host("sub/link.nqp"));
  std::filesystem::create_hard_link(host(), host("hard.nqp"));
  {
    const Ref<IStorage> root = open(kChangeRoot, "sub/link.nqp");
    EXPECT_EQ(openStatus(), STG_E_SHAREVIOLATION) << "the link's target is the file that is locked";
    put(root.get(), u"S", new_);
    check(root->Commit(STGC_ONLYIFCURRENT));
  }
  EXPECT_TRUE(std::filesystem::is_symlink(host("sub/link.nqp")));
  EXPECT_TRUE(onDisk() == new_);
  EXPECT_TRUE(get(open(kReadRoot, "hard.nqp").get(), u"S") == old_)
      << "another name of the old file keeps that";
  struct stat status {};
  ASSERT_EQ(::stat(host().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640u);
  if (privileged) {
    EXPECT_EQ(status.st_gid, 65534u);
  }
  char note[4] = {};
  if (attributes) {
    EXPECT_EQ(::getxattr(host().c_str(), "user.note", note, sizeof note), 4);
  }
}

TEST_F(CommitSafety, ALinkToNothingIsFilled) {
  std::filesystem::create_symlink("target.nqp", host("link.nqp"));
  create("link.nqp");
  EXPECT_TRUE(std::filesystem::is_symlink(host("link.nqp")));
  EXPECT_TRUE(std::filesystem::is_regular_file(host("target.nqp")));
}

TEST_F(CommitSafety, WhatCannotBeAProjectFileIsRefused) {
  std::filesystem::create_directory(host("directory"));
  ASSERT_EQ(::mkfifo(host("pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("loop", host("loop"));
  struct {
    const char* name;
    HRESULT status;
  } const rows[] = {
      {"directory", STG_E_ACCESSDENIED},  {"pipe", STG_E_ACCESSDENIED},    {"loop", STG_E_PATHNOTFOUND},
      {"missing", STG_E_FILENOTFOUND},    {"no/file", STG_E_PATHNOTFOUND}, {"p.nqp/file", STG_E_PATHNOTFOUND},
      {"directory/", STG_E_ACCESSDENIED},
  };
  for (const auto& row : rows) EXPECT_EQ(openStatus(kChangeRoot, row.name), row.status) << row.name;
  Ref<IStorage> root;
  EXPECT_EQ(StgCreateDocfile(path("directory"), kCreateRoot, &root), STG_E_ACCESSDENIED);
  EXPECT_EQ(StgCreateDocfile(path("pipe"), kCreateRoot, &root), STG_E_ACCESSDENIED);
  EXPECT_EQ(StgCreateDocfile(path(std::string(300, 'x')), kCreateRoot, &root), STG_E_INVALIDNAME);
  EXPECT_EQ(StgOpenStorage(u"", kReadRoot, &root), STG_E_PATHNOTFOUND);
}

TEST_F(CommitSafety, LongNamesHaveRoomForTheFileBesideThem) {
  calls_.noUnnamedFiles = true;
  const std::string name(255, 'n');
  const Ref<IStorage> root = compound::createRoot(calls_, host(name), path(name), kCreateRoot);
  put(root.get(), u"S", "x");
  EXPECT_EQ(root->Commit(STGC_DEFAULT), S_OK);
}

}  // namespace
}  // namespace forgeyard
