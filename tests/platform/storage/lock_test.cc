#include <gmock/gmock.h>
#include <time.h>

#include <cstdlib>
#include <cstring>

#include "tests/platform/storage/child.h"
#include "tests/platform/storage/storage_testing.h"
#include "tests/platform/storage/strict_reader.h"

namespace forgeyard {
namespace {

class Lock : public StorageTest {
 protected:
  static void sleepNanoseconds(long time) {
    const timespec pause{0, time};
    ::nanosleep(&pause, nullptr);
  }
};

TEST_F(Lock, ASecondOpenerInTheProcessIsRefused) {
  for (const std::uint32_t mode : {kChangeRoot, kReadRoot}) {
    Ref<IStorage> root = create();
    EXPECT_EQ(openStatus(mode), STG_E_SHAREVIOLATION);
    root = nullptr;
    root = open(mode);
    EXPECT_EQ(openStatus(kReadRoot), STG_E_SHAREVIOLATION);
    Ref<IStorage> other;
    EXPECT_EQ(StgCreateDocfile(path(), kCreateRoot, &other), STG_E_SHAREVIOLATION);
    root = nullptr;
    EXPECT_EQ(openStatus(mode), S_OK);
  }
}

TEST_F(Lock, WhoOnlyLooksMindsNoneAndTakesNone) {
  const std::uint32_t look = STGM_TRANSACTED | STGM_SHARE_DENY_NONE | STGM_READ;
  EXPECT_EQ(openStatus(look | STGM_READWRITE), STG_E_INVALIDFUNCTION);
  Ref<IStorage> root = create();
  put(root.get(), u"S", "old");
  check(root->Commit(STGC_DEFAULT));
  put(root.get(), u"S", "uncommitted");
  const Ref<IStorage> looker = open(look);
  const Contents old{{"S", "old"}};
  EXPECT_EQ(contentsOf(looker.get()), old);
  check(root->Commit(STGC_DEFAULT));
  EXPECT_EQ(contentsOf(looker.get()), old) << "goes on with what it has opened";
  root = nullptr;
  EXPECT_EQ(openStatus(kChangeRoot), S_OK);
}

TEST_F(Lock, HoldsAcrossCommits) {
  const Ref<IStorage> root = create();
  for (int i = 0; i < 3; ++i) {
    put(root.get(), u"S", std::to_string(i));
    check(root->Commit(STGC_ONLYIFCURRENT));
    EXPECT_EQ(openStatus(kReadRoot), STG_E_SHAREVIOLATION);
  }
}

TEST_F(Lock, OfAKilledProcessIsFree) {
  create();
  Child child([&](Child& self) {
    const Ref<IStorage> root = open();
    put(root.get(), u"S", "never committed");
    self.announce();
    ::pause();
  });
  ASSERT_TRUE(child.awaitAnnouncement());
  EXPECT_EQ(openStatus(), STG_E_SHAREVIOLATION);
  EXPECT_EQ(openStatus(kReadRoot), STG_E_SHAREVIOLATION);
  child.kill();
  EXPECT_EQ(contentsOf(open().get()), Contents{});
}

// Each turn reads the counter and commits the next value: a lock with a gap, for example while the file is
// being replaced, loses turns.
TEST_F(Lock, TwoProcessesNeverWorkOnTheSameState) {
  constexpr int kTurns = 60;
  {
    const Ref<IStorage> root = create();
    put(root.get(), u"Counter", "0");
    check(root->Commit(STGC_DEFAULT));
  }
  const auto takeTurns = [&] {
    for (int done = 0; done < kTurns;) {
      Ref<IStorage> root;
      const HRESULT status = StgOpenStorage(path(), kChangeRoot, &root);
      if (status != STG_E_SHAREVIOLATION) {
        check(status);
        put(root.get(), u"Counter", std::to_string(std::stoi(get(root.get(), u"Counter")) + 1));
        check(root->Commit(STGC_ONLYIFCURRENT));
        ++done;
      }
    }
  };
  Child first(takeTurns);
  Child second(takeTurns);
  EXPECT_EQ(first.wait(), 0);
  EXPECT_EQ(second.wait(), 0);
  EXPECT_EQ(get(open().get(), u"Counter"), std::to_string(2 * kTurns));
}

// A child commits one state after the other and is killed at any moment. FORGEYARD_CRASH_ROUNDS asks for more
// rounds.
TEST_F(Lock, AKillAtAnyMomentLeavesAWholeState) {
  const char* asked = std::getenv("FORGEYARD_CRASH_ROUNDS");
  const int rounds = asked ? std::atoi(asked) : 25;
  const auto fill = [](IStorage* root, std::uint32_t state) {
    put(root, u"State", std::to_string(state));
    put(root, u"Long", pattern(20000 + state % 7 * 30000, state));
    put(root, u"Short", pattern(state % 5 * 1000, state));
  };
  {
    const Ref<IStorage> root = create();
    fill(root.get(), 1);
    check(root->Commit(STGC_DEFAULT));
  }
  std::uint32_t state = 1;
  for (int round = 0; round < rounds; ++round) {
    Child child([&](Child& self) {
      const Ref<IStorage> root = open();
      for (std::uint32_t next = state + 1;; ++next) {
        fill(root.get(), next);
        check(root->Commit(STGC_ONLYIFCURRENT));
        if (next == state + 1) self.announce();
      }
    });
    ASSERT_TRUE(child.awaitAnnouncement());
    sleepNanoseconds(round * 7919 % 5000 * 1000L);
    child.kill();
    const Contents contents = contentsOf(open().get());
    const std::uint32_t now = static_cast<std::uint32_t>(std::stoul(contents.at("State")));
    ASSERT_GT(now, state);
    ASSERT_TRUE(contents.at("Long") == pattern(20000 + now % 7 * 30000, now)) << now;
    ASSERT_TRUE(contents.at("Short") == pattern(now % 5 * 1000, now)) << now;
    ASSERT_THAT(readStrictly(stored()).complaints, testing::IsEmpty());
    ASSERT_THAT(files(), testing::ElementsAre("p.nqp"));
    state = now;
  }
}

}  // namespace
}  // namespace forgeyard
