#include "platform/threads/thread.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include "platform/threads/pipe.h"

namespace forgeyard {
namespace {

TEST(Thread, IsSignalledWhenItsBodyHasReturned) {
  Event go;
  Thread thread("worker", [&] { waitAny({&go}); });
  EXPECT_FALSE(thread.isSignalled());
  go.set();
  EXPECT_EQ(waitAny({&thread}), 0u);
  thread.join();
  EXPECT_TRUE(thread.isSignalled());
}

TEST(Thread, LeavesSignalsToTheHostsThreads) {
  sigset_t blocked;
  sigset_t before;
  sigset_t after;
  pthread_sigmask(SIG_SETMASK, nullptr, &before);
  Thread("worker", [&] { pthread_sigmask(SIG_SETMASK, nullptr, &blocked); }).join();
  pthread_sigmask(SIG_SETMASK, nullptr, &after);
  EXPECT_EQ(sigismember(&blocked, SIGINT), 1);
  EXPECT_EQ(sigismember(&blocked, SIGTERM), 1);
  EXPECT_EQ(sigismember(&blocked, SIGSEGV), 0) << "a crash handler of the host must see it";
  EXPECT_EQ(sigismember(&after, SIGINT), sigismember(&before, SIGINT));
}

TEST(Thread, DetachedOneMayOutliveItsObjectAndIsCounted) {
  Event go;
  Event gone;
  const std::size_t before = Thread::running();
  {
    Thread thread("worker", [&] {
      waitAny({&go});
      gone.set();
    });
    thread.detach();
  }
  EXPECT_EQ(Thread::running(), before + 1);
  go.set();
  Thread::waitForAll();
  EXPECT_EQ(Thread::running(), 0u);
  EXPECT_TRUE(gone.isSet());
}

TEST(Thread, WhatItsBodyOwnsGoesBeforeItCountsAsEnded) {
  auto owned = std::make_shared<int>(0);
  Thread thread("worker", [owned] { static_cast<void>(*owned); });
  waitAny({&thread});
  EXPECT_EQ(owned.use_count(), 1);
}

TEST(Thread, ExceptionEndsTheThreadAlone) {
  Thread thread("worker", [] { throw std::runtime_error("lost"); });
  EXPECT_EQ(waitAny({&thread}), 0u);
}

}  // namespace
}  // namespace forgeyard
