#include "platform/threads/named_mutex.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/threads/event.h"
#include "platform/threads/named_event.h"
#include "platform/threads/thread.h"
#include "tests/platform/support/scratch.h"
#include "tests/platform/threads/child_process.h"

namespace forgeyard {
namespace {

using NamedMutexTest = RuntimeTest;

TEST_F(NamedMutexTest, ExcludesOtherObjectsOfTheSameProcess) {
  NamedMutex a("ExcludeMultiBuild");
  NamedMutex b("ExcludeMultiBuild");
  EXPECT_TRUE(a.tryLock());
  EXPECT_TRUE(a.tryLock());
  EXPECT_FALSE(b.tryLock());
  b.unlock();
  EXPECT_FALSE(b.tryLock());
  a.unlock();
  EXPECT_TRUE(b.tryLock());
}

TEST_F(NamedMutexTest, KilledHolderLetsGoAtOnce) {
  NamedMutex mutex("ExcludeMultiBuild");
  ChildProcess holder({"hold-mutex", "ExcludeMultiBuild"});
  ASSERT_EQ(holder.line(), "held");
  EXPECT_FALSE(mutex.tryLock());
  holder.kill();
  EXPECT_FALSE(mutex.holder());
  EXPECT_TRUE(mutex.tryLock());
}

TEST_F(NamedMutexTest, SaysWhoHoldsIt) {
  NamedMutex mutex("ExcludeMultiBuild");
  EXPECT_FALSE(mutex.holder());
  ChildProcess other({"hold-mutex", "ExcludeMultiBuild"});
  ASSERT_EQ(other.line(), "held");
  const auto holder = mutex.holder();
  ASSERT_TRUE(holder);
  EXPECT_EQ(holder->process, other.process().id());
  EXPECT_EQ(holder->program, "child");
  other.kill();
  ASSERT_TRUE(mutex.tryLock());
  EXPECT_EQ(mutex.holder()->process, ::getpid());
  mutex.unlock();
  EXPECT_FALSE(mutex.holder());
}

TEST_F(NamedMutexTest, HoldersTextFromOutsideIsTakenWithCare) {
  NamedMutex mutex("ExcludeMultiBuild");
  for (const std::string text : {"", "x", "12", "99999999999999 a", "\n", " 1 a", "0x1 a"}) {
    writeFile(scratch_ / "ExcludeMultiBuild.mutex", text);
    EXPECT_FALSE(mutex.holder()) << text;
  }
}

TEST_F(NamedMutexTest, RemovedFileIsMadeAnew) {
  NamedMutex before("ExcludeMultiBuild");
  std::filesystem::remove(scratch_ / "ExcludeMultiBuild.mutex");
  NamedMutex after("ExcludeMultiBuild");
  ASSERT_TRUE(after.tryLock());
  EXPECT_FALSE(before.tryLock());
  after.unlock();
  EXPECT_TRUE(before.tryLock());
}

TEST_F(NamedMutexTest, ThreadsOfTwoProcessesTakeTurns) {
  constexpr int turns = 10;
  const std::vector<std::string> arguments = {"turns", "ExcludeMultiBuild", "StopEvent", scratch_.path(),
                                              std::to_string(turns)};
  ChildProcess a(arguments);
  ChildProcess b(arguments);
  EXPECT_EQ(a.wait(), 0) << a.errors();
  EXPECT_EQ(b.wait(), 0) << b.errors();
  EXPECT_EQ(readFile(scratch_ / "counter"), std::to_string(2 * 3 * turns));
}

TEST_F(NamedMutexTest, WaiterTakesItWhenTheHolderLetsGo) {
  NamedMutex holder("ExcludeMultiBuild");
  ASSERT_TRUE(holder.tryLock());
  Event stop;
  std::size_t result = 9;
  int guarded = 0;
  Thread waiter("waiter", [&] {
    NamedMutex mutex("ExcludeMultiBuild");
    result = waitAny(stop, mutex);
    ++guarded;
  });
  ++guarded;  // the race detector tells whether the mutex orders the two
  holder.unlock();
  waiter.join();
  EXPECT_EQ(result, 1u);
  EXPECT_EQ(guarded, 2);
}

TEST_F(NamedMutexTest, StopEndsTheWait) {
  NamedMutex holder("ExcludeMultiBuild");
  ASSERT_TRUE(holder.tryLock());
  const auto stop = NamedEvent::create("StopEvent");
  std::size_t result = 9;
  Thread waiter("waiter", [&] {
    NamedMutex mutex("ExcludeMultiBuild");
    result = waitAny(*stop, mutex);
  });
  NamedEvent::open("StopEvent")->set();
  waiter.join();
  EXPECT_EQ(result, 0u);
}

TEST_F(NamedMutexTest, StopWinsOverAFreeMutex) {
  NamedMutex mutex("ExcludeMultiBuild");
  Event stop;
  stop.set();
  EXPECT_EQ(waitAny(stop, mutex), 0u);
  EXPECT_FALSE(mutex.isHeld());
  EXPECT_TRUE(NamedMutex("ExcludeMultiBuild").tryLock());
}

// Is set in the moment between the look at it and the taking of the mutex.
class LateStop : public Waitable {
 public:
  int descriptor() const noexcept override {
    if (++asked_ == 2) event_.set();
    return event_.descriptor();
  }

 private:
  mutable Event event_;
  mutable int asked_ = 0;
};

TEST_F(NamedMutexTest, StopThatComesTogetherWithTheMutexWins) {
  NamedMutex mutex("ExcludeMultiBuild");
  EXPECT_EQ(waitAny(LateStop(), mutex), 0u);
  EXPECT_FALSE(mutex.isHeld());
}

TEST_F(NamedMutexTest, RefusesWhatIsNoFile) {
  std::filesystem::create_directory(scratch_ / "folder.mutex");
  std::filesystem::create_symlink("target", scratch_ / "link.mutex");
  EXPECT_THROW(NamedMutex("folder"), std::system_error);
  EXPECT_THROW(NamedMutex("link"), std::system_error);
  EXPECT_FALSE(std::filesystem::exists(scratch_ / "target"));
}

}  // namespace
}  // namespace forgeyard
