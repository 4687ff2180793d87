#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/platform/storage/storage_testing.h"

namespace forgeyard {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Guid kFolder = guid("157C5E4A-3BD5-11D1-817F-00AA002676D3");

class Transaction : public StorageTest {
 protected:
  Contents onDisk() {
    root_ = nullptr;
    return contentsOf(open(kReadRoot).get());
  }

  Ref<IStorage> root_ = create();
};

TEST_F(Transaction, NothingReachesTheFileBeforeTheRootsCommit) {
  const std::string before = stored();
  const Ref<IStorage> sub = createStorage(root_.get(), u"Sub");
  put(root_.get(), u"S", pattern(10'000'000));
  put(sub.get(), u"T", "t");
  check(sub->Commit(STGC_ONLYIFCURRENT));
  EXPECT_TRUE(stored() == before);
  EXPECT_THAT(files(), ElementsAre("p.nqp"));
  EXPECT_THAT(onDisk(), IsEmpty());
}

TEST_F(Transaction, TheRootsCommitTakesWhatSubStoragesCommitted) {
  const Ref<IStorage> sub = createStorage(root_.get(), u"Sub");
  put(sub.get(), u"Committed", "c");
  check(sub->SetClass(kFolder));
  check(sub->Commit(STGC_ONLYIFCURRENT));
  put(sub.get(), u"Not", "n");
  check(root_->Commit(STGC_ONLYIFCURRENT));
  EXPECT_EQ(onDisk(), (Contents{{"Sub/", formatGuid(kFolder)}, {"Sub/Committed", "c"}}));
}

TEST_F(Transaction, ASubStorageLetGoUncommittedLeavesNoTrace) {
  put(createStorage(root_.get(), u"Sub").get(), u"T", "t");
  EXPECT_EQ(contentsOf(root_.get()), (Contents{{"Sub/", formatGuid(GUID_NULL)}}));
}

TEST_F(Transaction, CommitsOfNestedSubStoragesGoUpOneLevel) {
  const Ref<IStorage> outer = createStorage(root_.get(), u"Outer");
  {
    const Ref<IStorage> inner = createStorage(outer.get(), u"Inner");
    put(inner.get(), u"T", "t");
    check(inner->Commit(STGC_DEFAULT));
  }
  EXPECT_THAT(contentsOf(outer.get()), testing::Contains(testing::Key("Inner/T")));
  check(root_->Commit(STGC_DEFAULT));
  EXPECT_EQ(onDisk(), (Contents{{"Outer/", formatGuid(GUID_NULL)}}));
}

TEST_F(Transaction, UntransactedSubStoragesWorkOnTheirParent) {
  const Ref<IStorage> direct = createStorage(root_.get(), u"Direct", kCreate);
  const Ref<IStream> stream = createStream(direct.get(), u"T");
  write(stream.get(), "still buffered");
  check(root_->Commit(STGC_DEFAULT));
  write(stream.get(), ", and more");
  check(root_->Commit(STGC_DEFAULT));
  EXPECT_EQ(onDisk(),
            (Contents{{"Direct/", formatGuid(GUID_NULL)}, {"Direct/T", "still buffered, and more"}}));
}

TEST_F(Transaction, RevertGoesBackToWhatWasCommitted) {
  put(root_.get(), u"S", "old");
  check(root_->Commit(STGC_DEFAULT));
  const Ref<IStorage> sub = createStorage(root_.get(), u"Sub");
  const Ref<IStream> stream = openStream(root_.get(), u"S");
  write(stream.get(), "new");
  check(root_->Revert());
  EXPECT_EQ(contentsOf(root_.get()), (Contents{{"S", "old"}}));
  EXPECT_EQ(stream->Write("x", 1, nullptr), STG_E_REVERTED);
  EXPECT_EQ(sub->Commit(STGC_DEFAULT), STG_E_REVERTED);

  const Ref<IStorage> again = createStorage(root_.get(), u"Sub");
  put(again.get(), u"T", "first");
  check(again->Commit(STGC_DEFAULT));
  put(again.get(), u"T", "second");
  check(again->Revert());
  EXPECT_EQ(get(again.get(), u"T"), "first");
}

TEST_F(Transaction, VersionsDoNotSeeEachOthersBytes) {
  const Ref<IStorage> sub = createStorage(root_.get(), u"Sub");
  const std::string first = pattern(100000, 1);
  put(sub.get(), u"T", first);
  check(sub->Commit(STGC_DEFAULT));
  check(root_->Commit(STGC_DEFAULT));
  const Ref<IStream> stream = openStream(sub.get(), u"T");
  seek(stream.get(), 70000);
  write(stream.get(), "changed");
  check(root_->Commit(STGC_DEFAULT));
  put(root_.get(), u"Other", pattern(50000));
  check(root_->Commit(STGC_DEFAULT));  // the file moves under the uncommitted stream
  seek(stream.get(), 0);
  EXPECT_TRUE(readAll(stream.get()) == std::string(first).replace(70000, 7, "changed"));
  EXPECT_TRUE(onDisk().at("Sub/T") == first);
}

TEST_F(Transaction, AnElementIsOpenOnceAtATime) {
  Ref<IStream> stream = createStream(root_.get(), u"S");
  Ref<IStream> second;
  EXPECT_EQ(root_->OpenStream(u"s", kRead, &second), STG_E_ACCESSDENIED);
  stream = nullptr;
  EXPECT_EQ(root_->OpenStream(u"s", kRead, &second), S_OK);
}

TEST_F(Transaction, DestroyedAndReplacedElementsAreCutOff) {
  const Ref<IStream> destroyed = createStream(root_.get(), u"D");
  const Ref<IStream> replaced = createStream(root_.get(), u"R");
  const Ref<IStorage> sub = createStorage(root_.get(), u"Sub");
  const Ref<IStream> inner = createStream(sub.get(), u"I");
  write(replaced.get(), "old");
  check(root_->DestroyElement(u"D"));
  check(root_->DestroyElement(u"Sub"));
  const Ref<IStream> fresh = createStream(root_.get(), u"R");
  STATSTG stat;
  for (const Ref<IStream>& stream : {destroyed, replaced, inner}) {
    EXPECT_EQ(stream->Write("x", 1, nullptr), STG_E_REVERTED);
    EXPECT_EQ(stream->Stat(&stat), STG_E_REVERTED);
  }
  write(fresh.get(), "new");
  check(root_->Commit(STGC_DEFAULT));
  root_ = nullptr;
  EXPECT_EQ(onDisk(), (Contents{{"R", "new"}}));
}

TEST_F(Transaction, ElementsAreCutOffWhenTheirParentGoes) {
  const Ref<IStorage> sub = createStorage(root_.get(), u"Sub");
  const Ref<IStream> stream = createStream(sub.get(), u"S");
  root_ = nullptr;
  EXPECT_EQ(stream->Write("x", 1, nullptr), STG_E_REVERTED);
  Ref<IEnumSTATSTG> enumerator;
  EXPECT_EQ(sub->EnumElements(&enumerator), STG_E_REVERTED);
  EXPECT_EQ(openStatus(), S_OK) << "the lock has gone with the root";
}

TEST_F(Transaction, LastReferencesMayGoOnAnotherThread) {
  for (int round = 0; round < 50; ++round) {
    Ref<IStorage> sub = createStorage(root_.get(), u"Sub", kCreate);
    Ref<IStream> stream = createStream(sub.get(), u"S");
    write(stream.get(), "bytes");
    std::thread other([stream = std::move(stream), sub = std::move(sub)]() mutable {
      stream = nullptr;
      sub = nullptr;
    });
    put(root_.get(), u"T", std::to_string(round));
    elementsOf(root_.get());
    check(root_->Revert());
    other.join();
  }
}

TEST_F(Transaction, CommitOfNoChangeLeavesTheFileAlone) {
  put(root_.get(), u"S", "x");
  check(root_->Commit(STGC_DEFAULT));
  struct stat before {};
  struct stat after {};
  ASSERT_EQ(::stat(host().c_str(), &before), 0);
  check(createStorage(root_.get(), u"Sub")->Commit(STGC_DEFAULT));
  check(root_->DestroyElement(u"Sub"));
  check(root_->Revert());
  EXPECT_EQ(get(root_.get(), u"S"), "x");
  check(root_->SetClass(GUID_NULL));
  check(root_->Commit(STGC_DEFAULT));
  ASSERT_EQ(::stat(host().c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(Transaction, CreatingOverAFileKeepsTheOldOneUntilTheCommit) {
  root_ = nullptr;
  directory_.put("p.nqp", "no compound file at all");
  root_ = create();
  EXPECT_EQ(stored(), "no compound file at all");
  EXPECT_EQ(openStatus(), STG_E_SHAREVIOLATION);
  check(root_->Revert());
  check(root_->Commit(STGC_DEFAULT));
  EXPECT_THAT(onDisk(), IsEmpty());

  constexpr std::uint32_t kOnlyNew = kCreateRoot & ~STGM_CREATE;
  EXPECT_EQ(StgCreateDocfile(path(), kOnlyNew, &root_), STG_E_FILEALREADYEXISTS);
}

TEST_F(Transaction, SwitchingTakesTheCommittedStateAndKeepsTheRest) {
  put(root_.get(), u"S", "committed");
  check(root_->Commit(STGC_DEFAULT));
  const Ref<IStream> stream = openStream(root_.get(), u"S");
  write(stream.get(), "UN");
  Ref<IRootStorage> switcher = root_.as<IRootStorage>();
  EXPECT_EQ(switcher->SwitchToFile(path()), STG_E_FILEALREADYEXISTS);
  EXPECT_EQ(switcher->SwitchToFile(path("none/q")), STG_E_PATHNOTFOUND);
  check(switcher->SwitchToFile(path("q.nqp.local")));

  EXPECT_EQ(contentsOf(open(kReadRoot).get()).at("S"), "committed") << "the old file is free";
  EXPECT_EQ(openStatus(kReadRoot, "q.nqp.local"), STG_E_SHAREVIOLATION);
  std::filesystem::copy_file(host("q.nqp.local"), host("copy"));
  EXPECT_EQ(contentsOf(open(kReadRoot, "copy").get()).at("S"), "committed");
  STATSTG stat;
  check(root_->Stat(&stat));
  EXPECT_EQ(stat.name, path("q.nqp.local"));

  check(root_->Commit(STGC_ONLYIFCURRENT));
  root_ = nullptr;
  EXPECT_EQ(openStatus(kReadRoot, "q.nqp.local"), STG_E_SHAREVIOLATION) << "a reference to the root is left";
  switcher = nullptr;
  EXPECT_EQ(contentsOf(open(kReadRoot, "q.nqp.local").get()).at("S"), "UNmmitted");
}

TEST_F(Transaction, CommitNoticesThatTheFileChangedBehindTheLock) {
  put(root_.get(), u"S", "ours");
  const std::string before = stored();

  std::filesystem::remove(host());
  directory_.put("p.nqp", "another file");
  EXPECT_EQ(root_->Commit(STGC_ONLYIFCURRENT), STG_E_NOTCURRENT);
  EXPECT_EQ(stored(), "another file");
  check(root_->Commit(STGC_DEFAULT));

  put(root_.get(), u"S", "ours again");
  std::ofstream(host(), std::ios::app) << "written into";
  EXPECT_EQ(root_->Commit(STGC_DEFAULT), STG_E_NOTCURRENT);

  root_ = nullptr;
  root_ = create("r.nqp");
  put(root_.get(), u"S", "s");
  std::filesystem::remove(host("r.nqp"));
  check(root_->Commit(STGC_ONLYIFCURRENT));
  EXPECT_TRUE(std::filesystem::exists(host("r.nqp"))) << "a removed file comes back";
  EXPECT_THAT(files(), ElementsAre("p.nqp", "r.nqp"));
}

}  // namespace
}  // namespace forgeyard
