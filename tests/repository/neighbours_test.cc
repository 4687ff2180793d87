#include "tests/repository/repository_fixture.h"

namespace forgeyard::test {
namespace {

using testing::HasSubstr;

// Plain clients on the same repository.
class Neighbours : public RepositoryTest {};
INSTANTIATE_TEST_SUITE_P(, Neighbours, testing::Values(Transport::File, Transport::Server), nameOf);

TEST_P(Neighbours, SeeCheckOutsAsLocks) {
  const Ref<IVSSDatabase> database = open("ann");
  add(*database, "a.c", "one\n");
  EXPECT_EQ(svn("bob", {"propget", "svn:needs-lock", url() + "/a.c"}).output, "*\n");
  ASSERT_EQ(item(*database, u"$\\a.c")->Checkout(u"why", model("a.c"), VSSFLAG_REPREPLACE), S_OK);
  EXPECT_THAT(svn("bob", {"info", url() + "/a.c"}).output, HasSubstr("Lock Owner: ann"));
  EXPECT_NE(svn("bob", {"lock", url() + "/a.c"}).exitCode, 0);
  EXPECT_NE(svn("bob", {"rm", "-m", "", url() + "/a.c"}).exitCode, 0);
}

TEST_P(Neighbours, BrokenLockRefusesTheCheckIn) {
  const Ref<IVSSDatabase> database = open("ann");
  add(*database, "a.c", "one\n");
  const Ref<IVSSItem> file = item(*database, u"$\\a.c");
  ASSERT_EQ(file->Checkout(u"", model("a.c"), VSSFLAG_REPREPLACE), S_OK);
  writeFile(local("a.c"), "ann's work\n");
  ASSERT_EQ(svn("bob", {"unlock", "--force", url() + "/a.c"}).exitCode, 0);
  EXPECT_TRUE(failed(file->Checkin(u"", model("a.c"), 0)));
  EXPECT_EQ(errorOf(*database), "$/a.c is not checked out");
  ASSERT_EQ(svn("bob", {"lock", "--force", url() + "/a.c"}).exitCode, 0);
  EXPECT_TRUE(failed(file->Checkin(u"", model("a.c"), 0)));
  EXPECT_EQ(readFile(local("a.c")), "ann's work\n");
  EXPECT_EQ(version(*database, u"$\\a.c"), 1);
}

TEST_P(Neighbours, CommitsAndRenamesCount) {
  const Ref<IVSSDatabase> database = open("ann");
  add(*database, "a.c", "one\n");
  ASSERT_EQ(svn("bob", {"checkout", "-q", url(), scratch_ / "bob/wc"}).exitCode, 0);
  ASSERT_EQ(svn("bob", {"lock", scratch_ / "bob/wc/a.c"}).exitCode, 0);
  writeFile(scratch_ / "bob/wc/a.c", "two\n");
  const Outcome committed = svn("bob", {"commit", "-m", "plain", scratch_ / "bob/wc"});
  ASSERT_EQ(committed.exitCode, 0) << committed.output;
  EXPECT_EQ(version(*database, u"$\\a.c"), 2);
  ASSERT_EQ(svn("bob", {"mv", "-m", "rename", url() + "/a.c", url() + "/b.c"}).exitCode, 0);
  EXPECT_EQ(version(*database, u"$\\b.c"), 3);
  EXPECT_NE(item(*database, u"$\\a.c", true), nullptr);

  std::vector<RepositoryVersion> versions;
  ASSERT_EQ(database.as<IRepositoryHistory>()->versions(u"$\\b.c", &versions), S_OK);
  ASSERT_EQ(versions.size(), 3u);
  EXPECT_EQ(versions[1].number, 2);
  EXPECT_EQ(versions[1].user + ": " + versions[1].comment, "bob: plain");
  std::string text;
  ASSERT_EQ(database.as<IRepositoryHistory>()->contents(u"$\\b.c", 100, &text), S_OK);
  EXPECT_EQ(text, "two\n");
  EXPECT_TRUE(failed(database.as<IRepositoryHistory>()->contents(u"$\\b.c", 3, &text)));
}

TEST_P(Neighbours, SameFileAddedTwice) {
  const Ref<IVSSDatabase> ann = open("ann");
  const Ref<IVSSDatabase> bob = open("bob");
  writeFile(local("a.c", "bob"), "bob's\n");
  const Ref<IVSSItem> root = item(*bob, u"$\\");
  add(*ann, "a.c", "ann's\n");
  Ref<IVSSItem> added;
  EXPECT_TRUE(failed(root->Add(model("a.c", "bob"), u"", VSSFLAG_KEEPNO, &added)));
  EXPECT_EQ(readFile(local("a.c", "bob")), "bob's\n");
  EXPECT_NE(modeOf(local("a.c", "bob")) & 0200, 0u) << "still his own";
}

}  // namespace
}  // namespace forgeyard::test
