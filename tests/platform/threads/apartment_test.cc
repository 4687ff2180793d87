#include "platform/threads/apartment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/threads/event.h"
#include "platform/threads/thread.h"

namespace forgeyard {
namespace {

using testing::ElementsAre;

// The status that the body's exception carries; S_OK if there is none.
template <class Body>
HRESULT statusOf(Body&& body) {
  return guard([&] { static_cast<void>(body()); });
}

class ApartmentTest : public testing::Test {
 protected:
  // Runs `body` on another thread while this one serves its calls.
  void serve(std::function<void()> body) {
    Thread thread("caller", std::move(body));
    EXPECT_EQ(scope_->waitPumping({&thread}), 0u);
  }

  ApartmentScope scope_;
};

TEST_F(ApartmentTest, CallRunsOnTheOwnersThreadAndGivesItsResult) {
  const auto owner = std::this_thread::get_id();
  std::thread::id ranOn;
  std::string result;
  serve([&] {
    result = scope_->call([&] {
      ranOn = std::this_thread::get_id();
      return std::string("answer");
    });
  });
  EXPECT_EQ(ranOn, owner);
  EXPECT_EQ(result, "answer");
}

TEST_F(ApartmentTest, ExceptionsComeBackToTheCaller) {
  std::string text;
  HRESULT status = S_OK;
  serve([&] {
    try {
      scope_->call([] { throw std::runtime_error("from the owner"); });
    } catch (const std::runtime_error& error) {
      text = error.what();
    }
    status = statusOf([&] { return scope_->call([]() -> int { throw StatusError(E_INVALIDARG); }); });
  });
  EXPECT_EQ(text, "from the owner");
  EXPECT_EQ(status, E_INVALIDARG);
}

TEST_F(ApartmentTest, EachThreadsCallsRunInTheirOrder) {
  constexpr int rounds = 300;
  constexpr std::size_t callers = 3;
  std::vector<int> seen[callers];
  std::vector<std::unique_ptr<Thread>> threads;
  for (std::size_t caller = 0; caller < callers; ++caller) {
    threads.push_back(std::make_unique<Thread>("caller", [&, caller] {
      for (int i = 0; i < rounds; i += 2) {
        scope_->post([&, caller, i] { seen[caller].push_back(i); });
        scope_->call([&] { seen[caller].push_back(i + 1); });
      }
    }));
  }
  for (const auto& thread : threads) scope_->waitPumping({thread.get()});
  std::vector<int> expected(rounds);
  for (int i = 0; i < rounds; ++i) expected[static_cast<std::size_t>(i)] = i;
  for (const auto& order : seen) EXPECT_EQ(order, expected);
}

TEST_F(ApartmentTest, HandlesComeBeforeCallsAndTheLowestWins) {
  Event first;
  Event second;
  int served = 0;
  scope_->post([&] { ++served; });
  second.set();
  EXPECT_EQ(scope_->waitPumping({&first, &second}), 1u);
  first.set();
  EXPECT_EQ(scope_->waitPumping({&first, &second}), 0u);
  EXPECT_EQ(served, 0);
  EXPECT_TRUE(scope_->pumpPending());
  EXPECT_EQ(served, 1);
  EXPECT_FALSE(scope_->pumpPending());
}

TEST_F(ApartmentTest, CallMayWaitWhileItServesOtherCalls) {
  Event inner;
  Event entered;
  std::vector<std::string> log;
  Thread outerCaller("outer", [&] {
    scope_->call([&] {
      log.emplace_back("outer begins");
      entered.set();
      scope_->waitPumping({&inner});
      log.emplace_back("outer ends");
    });
  });
  Thread innerCaller("inner", [&] {
    waitAny({&entered});
    scope_->call([&] {
      log.emplace_back("inner");
      inner.set();
    });
  });
  scope_->waitPumping({&outerCaller});
  scope_->waitPumping({&innerCaller});
  EXPECT_THAT(log, ElementsAre("outer begins", "inner", "outer ends"));
}

// The wake-up for all three was taken when the first began.
TEST_F(ApartmentTest, InnerWaitServesWhatStoodBehindItsOwnCall) {
  Event inner;
  Event outer;
  std::vector<int> log;
  scope_->post([&] {
    scope_->waitPumping({&inner});
    log.push_back(1);
    outer.set();
  });
  scope_->post([&] { log.push_back(2); });
  scope_->post([&] {
    log.push_back(3);
    inner.set();
  });
  scope_->waitPumping({&outer});
  EXPECT_THAT(log, ElementsAre(2, 3, 1));
}

TEST_F(ApartmentTest, FloodOfCallsDoesNotHideAHandle) {
  Event stop;
  int rounds = 0;
  std::function<void()> again = [&] {
    if (++rounds == 100) stop.set();
    scope_->post(again);
  };
  scope_->post(again);
  EXPECT_EQ(scope_->waitPumping({&stop}), 0u);
  EXPECT_EQ(rounds, 100);
}

TEST_F(ApartmentTest, FailedPostHarmsNobody) {
  Event done;
  scope_->post([] { throw std::runtime_error("lost"); });
  scope_->post([&] { done.set(); });
  EXPECT_EQ(scope_->waitPumping({&done}), 0u);
}

TEST_F(ApartmentTest, RunServesUntilQuit) {
  int served = 0;
  Thread caller("caller", [&] {
    for (int i = 0; i < 10; ++i) scope_->call([&] { ++served; });
    scope_->quit();
  });
  scope_->run();
  EXPECT_EQ(served, 10);
}

TEST_F(ApartmentTest, QuitEndsTheInnermostRun) {
  std::vector<std::string> log;
  scope_->post([&] {
    scope_->post([&] { scope_->quit(); });
    scope_->run();
    log.emplace_back("inner ended");
    scope_->post([&] { scope_->quit(); });
  });
  scope_->run();
  log.emplace_back("outer ended");
  EXPECT_THAT(log, ElementsAre("inner ended", "outer ended"));
}

TEST_F(ApartmentTest, OtherThreadsMayNotWaitInIt) {
  HRESULT wait = S_OK;
  HRESULT pump = S_OK;
  Event event;
  serve([&] {
    wait = statusOf([&] { return scope_->waitPumping({&event}); });
    pump = statusOf([&] { return scope_->pumpPending(); });
  });
  EXPECT_EQ(wait, RPC_E_WRONG_THREAD);
  EXPECT_EQ(pump, RPC_E_WRONG_THREAD);
}

TEST_F(ApartmentTest, FurtherScopeOnTheThreadSharesTheApartment) {
  {
    const ApartmentScope inner;
    EXPECT_EQ(inner.get(), scope_.get());
  }
  EXPECT_EQ(Apartment::current(), scope_.get().get());
  EXPECT_EQ(Apartment::main(), scope_.get());
}

TEST_F(ApartmentTest, OtherThreadsMayHaveTheirOwn) {
  bool shared = true;
  bool isMain = true;
  int answer = 0;
  serve([&] {
    const ApartmentScope own;
    shared = own.get() == scope_.get();
    isMain = Apartment::main() != scope_.get();
    answer = scope_->call([] { return 5; });
  });
  EXPECT_FALSE(shared);
  EXPECT_FALSE(isMain);
  EXPECT_EQ(answer, 5);
}

TEST(ApartmentEnd, NoApartmentIsAStatus) {
  EXPECT_EQ(Apartment::current(), nullptr);
  EXPECT_EQ(statusOf([] { return Apartment::main(); }), CO_E_NOTINITIALIZED);
  EXPECT_EQ(statusOf([] { return Apartment::currentShared(); }), CO_E_NOTINITIALIZED);
}

// Fails what waits, and what comes later.
TEST(ApartmentEnd, CallsFailOnceTheOwnerHasGone) {
  auto scope = std::make_unique<ApartmentScope>();
  const std::shared_ptr<Apartment> apartment = scope->get();
  std::vector<HRESULT> statuses(4, S_OK);
  std::vector<std::unique_ptr<Thread>> callers;
  callers.reserve(statuses.size());
  for (HRESULT& status : statuses) {
    callers.push_back(std::make_unique<Thread>("caller", [&status, apartment] {
      // The first calls may still be served; sooner or later one is refused.
      while (!failed(status)) {
        status = guard([&] { apartment->call([] {}); });
      }
    }));
  }
  scope->get()->call([] {});
  (*scope)->pumpPending();
  scope.reset();
  for (const auto& caller : callers) caller->join();
  for (const HRESULT status : statuses) EXPECT_EQ(status, RPC_E_DISCONNECTED);
  EXPECT_FALSE(apartment->post([] { FAIL() << "ran after the end"; }));
  EXPECT_EQ(statusOf([&] {
              apartment->call([] {});
              return 0;
            }),
            RPC_E_DISCONNECTED);
  apartment->quit();
}

TEST(ApartmentEnd, PostedWorkThatNeverRanIsDropped) {
  auto owned = std::make_shared<int>(0);
  {
    const ApartmentScope scope;
    scope->post([owned] { FAIL(); });
    EXPECT_EQ(owned.use_count(), 2);
  }
  EXPECT_EQ(owned.use_count(), 1);
}

// A host's own loop: it sees every handle, and is woken for each call that it would otherwise sleep over.
class HostLoop : public MessageLoop {
 public:
  explicit HostLoop(std::atomic<int>& wakes) : wakes_(wakes) {}
  std::optional<std::size_t> wait(Waitables handles) override { return inner_.wait(handles); }
  void wake() noexcept override {
    ++wakes_;
    inner_.wake();
  }

 private:
  PollLoop inner_;
  std::atomic<int>& wakes_;
};

TEST(ApartmentLoop, HostsLoopIsUsedAndNotWokenAfterTheEnd) {
  std::atomic<int> wakes{0};
  std::shared_ptr<Apartment> apartment;
  {
    const ApartmentScope scope(std::make_unique<HostLoop>(wakes));
    apartment = scope.get();
    Event done;
    scope->post([&] { done.set(); });
    scope->post([] {});
    EXPECT_EQ(wakes, 1) << "one wake-up serves all that waits";
    scope->waitPumping({&done});
  }
  const int atEnd = wakes;
  apartment->post([] {});
  apartment->quit();
  EXPECT_EQ(wakes, atEnd);
}

}  // namespace
}  // namespace forgeyard
