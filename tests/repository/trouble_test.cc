#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "tests/repository/repository_fixture.h"

namespace forgeyard::test {
namespace {

using testing::HasSubstr;

constexpr std::int32_t kReplaceNow = VSSFLAG_REPREPLACE | VSSFLAG_TIMENOW;

class Trouble : public RepositoryTest {};
INSTANTIATE_TEST_SUITE_P(, Trouble, testing::Values(Transport::File, Transport::Server), nameOf);

TEST_P(Trouble, HooksThatRefuse) {
  const Ref<IVSSDatabase> database = open();
  add(*database, "a.c", "one\n");
  const Ref<IVSSItem> file = item(*database, u"$\\a.c");
  setHook("pre-lock", "echo no locks today >&2; exit 1");
  EXPECT_TRUE(failed(file->Checkout(u"", model("a.c"), kReplaceNow)));
  EXPECT_THAT(errorOf(*database), HasSubstr("no locks today"));
  EXPECT_EQ(modeOf(local("a.c")) & 0222, 0u) << "not taken for checked out";
  std::filesystem::remove(repository_ + "/hooks/pre-lock");
  ASSERT_EQ(file->Checkout(u"", model("a.c"), kReplaceNow), S_OK) << errorOf(*database);
  writeFile(local("a.c"), "two\n");
  setHook("pre-commit", "echo say why >&2; exit 1");
  EXPECT_TRUE(failed(file->Checkin(u"", model("a.c"), VSSFLAG_KEEPNO)));
  EXPECT_THAT(errorOf(*database), HasSubstr("say why"));
  EXPECT_EQ(readFile(local("a.c")), "two\n");
  EXPECT_NE(modeOf(local("a.c")) & 0200, 0u);
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_CHECKEDOUT_ME);
  std::filesystem::remove(repository_ + "/hooks/pre-commit");
  // One that complains when all is done changes nothing.
  setHook("post-commit", "echo late >&2; exit 1");
  EXPECT_EQ(file->Checkin(u"", model("a.c"), VSSFLAG_KEEPNO), S_OK) << errorOf(*database);
  EXPECT_EQ(version(*database, u"$\\a.c"), 2);
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_NOTCHECKEDOUT);
}

TEST_P(Trouble, LocalDirectoryThatTakesNothing) {
  const Ref<IVSSDatabase> database = open();
  add(*database, "a.c", "one\n");
  writeFile(scratch_ / "ann/plain", "");
  const Ref<IVSSItem> file = item(*database, u"$\\a.c");
  // Below a file nothing can be written.
  EXPECT_TRUE(failed(file->Checkout(u"", model("plain/a.c"), kReplaceNow)));
  EXPECT_THAT(errorOf(*database), HasSubstr("can't be written"));
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_NOTCHECKEDOUT) << "the lock is taken back";
  EXPECT_TRUE(failed(file->Checkin(u"", model("missing.c"), 0)));
  EXPECT_TRUE(failed(file->Get(model("plain/a.c"), kReplaceNow)));
  EXPECT_EQ(file->Get(model("b.c"), kReplaceNow), S_OK)
      << "and the session is of use: " << errorOf(*database);
}

// The spilled part of a large file meets a limit of the process, as it would a full disk.
TEST_P(Trouble, DiskFullInTheMiddleOfAGet) {
  const Ref<IVSSDatabase> database = open();
  add(*database, "big", std::string(8'000'000, 'x'));
  writeFile(local("kept"), "old\n");
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit limit{2'000'000, 2'000'000};
    ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const Ref<IVSSDatabase> own = open("bob");
    const Ref<IVSSItem> file = item(*own, u"$\\big");
    const bool refused = failed(file->Get(model("kept"), kReplaceNow));
    const bool named = errorOf(*own).find("kept can't be written") != std::string::npos;
    const bool goesOn = version(*own, u"$\\big") == 1;
    ::_exit(refused && named && goesOn ? 0 : 1 + !refused + 2 * !named + 4 * !goesOn);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(readFile(local("kept")), "old\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(scratch_ / "ann"), {}), 2)
      << "nothing left beside it";
}

TEST_P(Trouble, ServerThatGoesAndComesBack) {
  if (GetParam() == Transport::File) return;
  const Ref<IVSSDatabase> database = open();
  add(*database, "a.c", "one\n");
  const Ref<IVSSItem> file = item(*database, u"$\\a.c");
  ASSERT_EQ(file->Checkout(u"", model("a.c"), kReplaceNow), S_OK);
  writeFile(local("a.c"), "two\n");
  server_->stop(SIGKILL);
  EXPECT_TRUE(failed(file->Checkin(u"", model("a.c"), VSSFLAG_KEEPNO)));
  EXPECT_EQ(item(*database, u"$\\a.c"), nullptr);
  EXPECT_EQ(readFile(local("a.c")), "two\n");
  startServer();
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_CHECKEDOUT_ME) << "connects again by itself";
  EXPECT_EQ(file->Checkin(u"", model("a.c"), VSSFLAG_KEEPNO), S_OK) << errorOf(*database);
  EXPECT_EQ(version(*database, u"$\\a.c"), 2);
}

TEST_P(Trouble, ServerThatFallsSilent) {
  if (GetParam() == Transport::File) return;
  writeIni("url = " + url() + "\nlimit = 1\n");
  const Ref<IVSSDatabase> database = open();
  add(*database, "a.c", "one\n");
  setHook("pre-lock", "sleep 3");
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_TRUE(failed(item(*database, u"$\\a.c")->Checkout(u"", model("a.c"), kReplaceNow)));
  EXPECT_THAT(errorOf(*database), HasSubstr("has not sent anything for 1 s"));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
  EXPECT_EQ(modeOf(local("a.c")) & 0222, 0u);
}

// A client that is killed at any point of a check-in leaves a state that a further check-in or undo ends.
TEST_P(Trouble, KilledWhileCheckingIn) {
  const Ref<IVSSDatabase> database = open();
  add(*database, "a.c", "one\n");
  ASSERT_EQ(item(*database, u"$\\a.c")->Checkout(u"", model("a.c"), kReplaceNow), S_OK);
  for (const int microseconds : {0, 300, 1000, 2000, 4000, 8000, 15000}) {
    writeFile(local("a.c"), "after " + std::to_string(microseconds) + "\n");
    const pid_t child = ::fork();
    if (child == 0) {
      const Ref<IVSSDatabase> own = open();
      ignore(item(*own, u"$\\a.c")->Checkin(u"", model("a.c"), VSSFLAG_KEEPNO));
      ::_exit(0);
    }
    ::usleep(static_cast<useconds_t>(microseconds));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const std::int32_t state = checkedOut(*database, u"$\\a.c");
    ASSERT_TRUE(state == VSSFILE_NOTCHECKEDOUT || state == VSSFILE_CHECKEDOUT_ME) << state;
    if (state == VSSFILE_NOTCHECKEDOUT) {
      ASSERT_EQ(item(*database, u"$\\a.c")->Checkout(u"", model("a.c"), kReplaceNow), S_OK)
          << errorOf(*database);
    }
    std::filesystem::permissions(local("a.c"), std::filesystem::perms::owner_all);
  }
  // The server may still be finishing what the last client had sent, which ends the check-out too.
  ignore(item(*database, u"$\\a.c")->UndoCheckout(model("a.c"), 0));
  EXPECT_EQ(checkedOut(*database, u"$\\a.c"), VSSFILE_NOTCHECKEDOUT) << errorOf(*database);
  EXPECT_EQ(item(*database, u"$\\a.c")->Checkout(u"", model("a.c"), kReplaceNow), S_OK) << errorOf(*database);
}

}  // namespace
}  // namespace forgeyard::test
