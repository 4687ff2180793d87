#include "platform/files/host_location.h"
#include "tests/repository/repository_fixture.h"

namespace forgeyard::test {
namespace {

using testing::HasSubstr;

class Item : public RepositoryTest {};
INSTANTIATE_TEST_SUITE_P(, Item, testing::Values(Transport::File, Transport::Server), nameOf);

constexpr std::int32_t kReplaceNow = VSSFLAG_REPREPLACE | VSSFLAG_TIMENOW;

TEST_P(Item, LifeOfAFile) {
  const Ref<IVSSDatabase> database = open();
  EXPECT_EQ(item(*database, u"$\\a.c"), nullptr);
  add(*database, "a.c", "one\n");
  EXPECT_EQ(version(*database, u"$\\a.c"), 1);
  EXPECT_EQ(modeOf(local("a.c")) & 0222, 0u) << "a checked in file is read-only";

  const Ref<IVSSItem> file = item(*database, u"$/a.c");
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_NOTCHECKEDOUT);
  ASSERT_EQ(file->Checkout(u"why", model("a.c"), kReplaceNow), S_OK) << errorOf(*database);
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_CHECKEDOUT_ME);
  EXPECT_NE(modeOf(local("a.c")) & 0200, 0u);
  writeFile(local("a.c"), "two\n");
  ASSERT_EQ(file->Checkin(u"second", model("a.c"), VSSFLAG_KEEPYES | VSSFLAG_TIMENOW), S_OK)
      << errorOf(*database);
  EXPECT_EQ(version(*database, u"$\\a.c"), 2);
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_CHECKEDOUT_ME) << "kept";

  writeFile(local("a.c"), "dropped\n");
  ASSERT_EQ(file->UndoCheckout(model("a.c"), VSSFLAG_TIMENOW), S_OK) << errorOf(*database);
  EXPECT_EQ(readFile(local("a.c")), "two\n");
  EXPECT_EQ(modeOf(local("a.c")) & 0222, 0u);
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_NOTCHECKEDOUT);
  EXPECT_EQ(version(*database, u"$\\a.c"), 2);

  ASSERT_EQ(file->Checkout(u"", model("a.c"), VSSFLAG_REPREPLACE), S_OK);
  writeFile(local("a.c"), "three\n");
  ASSERT_EQ(file->Checkin(u"", model("a.c"), 0), S_OK) << errorOf(*database);
  EXPECT_EQ(version(*database, u"$\\a.c"), 3);
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_NOTCHECKEDOUT);
  EXPECT_THAT(svn("ann", {"log", url() + "/a.c"}).output, HasSubstr("second"));
}

TEST_P(Item, GetLeavesAFileThatIsTheSame) {
  const Ref<IVSSDatabase> database = open();
  add(*database, "a.c", "one\r\ntwo\n");
  const Ref<IVSSItem> file = item(*database, u"$\\a.c");
  const auto before = std::filesystem::last_write_time(local("a.c")) - std::chrono::hours(1);
  std::filesystem::permissions(local("a.c"), std::filesystem::perms::owner_all);
  std::filesystem::last_write_time(local("a.c"), before);
  ASSERT_EQ(file->Get(model("a.c"), kReplaceNow), S_OK) << errorOf(*database);
  EXPECT_EQ(std::filesystem::last_write_time(local("a.c")), before) << "nothing is rebuilt for it";
  EXPECT_EQ(modeOf(local("a.c")) & 0222, 0u);

  ASSERT_EQ(file->Get(model("new/dir/a.c"), VSSFLAG_REPREPLACE | VSSFLAG_USERRONO), S_OK)
      << errorOf(*database);
  EXPECT_EQ(readFile(local("new/dir/a.c")), "one\r\ntwo\n") << "bytes as they are";
  EXPECT_NE(modeOf(local("new/dir/a.c")) & 0200, 0u);

  writeFile(local("new/dir/a.c"), "own work\n");
  EXPECT_TRUE(failed(file->Get(model("new/dir/a.c"), 0)));
  EXPECT_EQ(readFile(local("new/dir/a.c")), "own work\n");
}

TEST_P(Item, CheckedOutByAnother) {
  const Ref<IVSSDatabase> ann = open("ann");
  const Ref<IVSSDatabase> bob = open("bob");
  add(*ann, "a.c", "one\n");
  ASSERT_EQ(item(*bob, u"$\\a.c")->Checkout(u"mine", model("a.c", "bob"), kReplaceNow), S_OK);
  EXPECT_EQ(checkedOut(*ann, u"$\\a.c"), VSSFILE_CHECKEDOUT);
  const Ref<IVSSItem> file = item(*ann, u"$\\a.c");
  writeFile(scratch_ / "ann/other.c", "local\n");
  EXPECT_TRUE(failed(file->Checkout(u"", model("other.c"), kReplaceNow)));
  EXPECT_THAT(errorOf(*ann), HasSubstr("checked out by bob"));
  EXPECT_EQ(readFile(local("other.c")), "local\n");
  EXPECT_TRUE(failed(file->Checkin(u"", model("a.c"), 0)));
  EXPECT_TRUE(failed(file->UndoCheckout(model("a.c"), 0)));
  EXPECT_TRUE(failed(file->Destroy()));
  EXPECT_EQ(version(*ann, u"$\\a.c"), 1);

  std::vector<RepositoryLock> locks;
  ASSERT_EQ(ann.as<IRepositoryHistory>()->locks(u"$\\", &locks), S_OK);
  ASSERT_EQ(locks.size(), 1u);
  EXPECT_EQ(locks[0].spec + locks[0].user + locks[0].comment, "$/a.cbobmine");
  EXPECT_FALSE(locks[0].own);
}

TEST_P(Item, DeletedAndRecovered) {
  const Ref<IVSSDatabase> database = open();
  Ref<IVSSItem> folder;
  ASSERT_EQ(item(*database, u"$\\")->NewSubproject(u"src", u"", &folder), S_OK);
  add(*database, "a.c", "one\n", u"$\\src");
  EXPECT_EQ(item(*database, u"$\\src\\a.c", true), nullptr) << "a live item is not found as deleted";
  // A colleague deletes the folder with a plain client.
  ASSERT_EQ(svn("bob", {"rm", "-m", "away", url() + "/src"}).exitCode, 0);
  EXPECT_EQ(item(*database, u"$\\src\\a.c"), nullptr);
  const Ref<IVSSItem> gone = item(*database, u"$\\src\\a.c", true);
  ASSERT_NE(gone, nullptr) << errorOf(*database);
  bool deleted = false;
  EXPECT_EQ(gone->get_Deleted(&deleted), S_OK);
  EXPECT_TRUE(deleted);
  ASSERT_EQ(gone->put_Deleted(false), S_OK) << errorOf(*database);
  EXPECT_EQ(version(*database, u"$\\src\\a.c"), 2) << "the history goes on";
  EXPECT_EQ(item(*database, u"$\\src\\a.c", true), nullptr);
}

TEST_P(Item, DestroyedStaysAway) {
  const Ref<IVSSDatabase> database = open();
  add(*database, "a.c", "one\n");
  add(*database, "b.c", "one\n");
  ASSERT_EQ(item(*database, u"$\\a.c")->Destroy(), S_OK) << errorOf(*database);
  EXPECT_EQ(item(*database, u"$\\a.c", true), nullptr);
  ASSERT_EQ(item(*database, u"$\\b.c")->put_Deleted(true), S_OK);
  const Ref<IVSSItem> gone = item(*database, u"$\\b.c", true);
  ASSERT_NE(gone, nullptr);
  ASSERT_EQ(gone->Destroy(), S_OK) << errorOf(*database);
  EXPECT_EQ(item(*database, u"$\\b.c", true), nullptr);
  EXPECT_EQ(item(*open("bob"), u"$\\b.c", true), nullptr) << "for others too";
  std::filesystem::remove(local("a.c"));
  add(*database, "a.c", "new\n");
  EXPECT_EQ(version(*database, u"$\\a.c"), 1);
}

TEST_P(Item, ChildrenOfAFolder) {
  const Ref<IVSSDatabase> database = open();
  Ref<IVSSItem> made;
  const Ref<IVSSItem> root = item(*database, u"$\\");
  ASSERT_EQ(root->NewSubproject(u"src", u"", &made), S_OK);
  EXPECT_EQ(root->NewSubproject(u"src", u"", &made), S_OK) << "made by another at the same moment";
  add(*database, "a.c", "");
  Ref<IVSSItems> children;
  ASSERT_EQ(root->get_Items(&children), S_OK);
  std::int32_t count = 0;
  ASSERT_EQ(children->get_Count(&count), S_OK);
  EXPECT_EQ(count, 2);
  Ref<IVSSItem> child;
  for (const Variant& index : {Variant(u"src"), Variant(2)}) {
    BString spec;
    ASSERT_EQ(children->get_Item(index, &child), S_OK);
    ASSERT_EQ(child->get_Spec(&spec), S_OK);
    EXPECT_EQ(spec, BString(u"$/src"));
  }
  for (const Variant& index : {Variant(u"SRC"), Variant(u""), Variant(0), Variant(3)})
    EXPECT_TRUE(failed(children->get_Item(index, &child)));
}

TEST_P(Item, BatchAnswersAsSingleQuestionsDo) {
  const Ref<IVSSDatabase> ann = open("ann");
  Ref<IVSSItem> folder;
  ASSERT_EQ(item(*ann, u"$\\")->NewSubproject(u"sub dir", u"", &folder), S_OK);
  Ref<IVSSItem> inner;
  ASSERT_EQ(folder->NewSubproject(u"x", u"", &inner), S_OK);
  std::vector<BString> specs;
  for (int i = 0; i < 20; ++i) {
    const std::string name = "f" + std::to_string(i) + ".c";
    add(*ann, name, "x", i % 2 ? BString(u"$\\sub dir") : BString(u"$\\sub dir\\x"));
    specs.push_back(BString::fromNarrow((i % 2 ? "$\\sub dir\\" : "$\\sub dir\\x\\") + name));
    const auto file = item(*ann, specs.back());
    if (i % 3 == 0) {
      ASSERT_EQ(file->Checkout(u"", model(name), kReplaceNow), S_OK);
    }
  }
  specs.push_back(u"$\\sub dir\\missing.c");
  specs.push_back(u"$\\outside.c");
  // Below the repository's root and below a folder of it.
  for (const std::string& below : {std::string(), std::string("/sub%20dir")}) {
    writeIni("url = " + url() + below);
    const Ref<IVSSDatabase> bob = open("bob");
    const auto states = [&] {
      std::vector<std::int32_t> all;
      for (const BString& spec : specs) {
        std::string path = spec.narrow();
        if (!below.empty()) path = path.size() > 10 ? "$" + path.substr(9) : path;
        all.push_back(checkedOut(*bob, BString::fromNarrow(path)));
      }
      return all;
    };
    const auto single = states();
    EXPECT_EQ(std::count(single.begin(), single.end(), VSSFILE_CHECKEDOUT), 7) << below;
    ASSERT_EQ(bob.as<IRepositoryBatch>()->BeginBatch(u"$\\"), S_OK);
    for (int round = 0; round < 3; ++round) EXPECT_EQ(states(), single) << below;
    // What this connection changes is seen at once.
    const BString free = below.empty() ? BString(u"$\\sub dir\\f1.c") : BString(u"$\\f1.c");
    ASSERT_EQ(item(*bob, free)->Checkout(u"", model("f1.c", "bob"), kReplaceNow), S_OK) << errorOf(*bob);
    EXPECT_EQ(checkedOut(*bob, free), VSSFILE_CHECKEDOUT_ME);
    ASSERT_EQ(item(*bob, free)->UndoCheckout(model("f1.c", "bob"), 0), S_OK) << errorOf(*bob);
    EXPECT_EQ(bob.as<IRepositoryBatch>()->EndBatch(), S_OK);
    EXPECT_EQ(bob.as<IRepositoryBatch>()->EndBatch(), E_UNEXPECTED);
  }
}

TEST_P(Item, LargeBinaryFile) {
  const Ref<IVSSDatabase> database = open();
  std::string bytes(50'000'000, '\0');
  std::uint32_t state = 1;
  for (std::size_t i = 0; i < bytes.size(); i += 64)
    bytes[i] = static_cast<char>(state = state * 1664525 + 1013904223);
  add(*database, "big.bin", bytes);
  const Ref<IVSSItem> file = item(*database, u"$\\big.bin");
  ASSERT_EQ(file->Get(model("copy.bin"), kReplaceNow), S_OK) << errorOf(*database);
  EXPECT_TRUE(readFile(local("copy.bin")) == bytes);
  EXPECT_EQ(svn("bob", {"propget", "svn:mime-type", url() + "/big.bin"}).output,
            "application/octet-stream\n");
}

}  // namespace
}  // namespace forgeyard::test
