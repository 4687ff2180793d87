#include "platform/threads/event.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/threads/timer.h"

namespace forgeyard {
namespace {

using std::chrono::milliseconds;

TEST(Event, StaysSetUntilItIsReset) {
  Event event;
  EXPECT_FALSE(event.isSet());
  event.set();
  event.set();
  EXPECT_TRUE(event.isSet());
  EXPECT_EQ(waitAny({&event}), 0u);
  EXPECT_TRUE(event.isSet());
  event.reset();
  EXPECT_FALSE(event.isSet());
  event.reset();
  EXPECT_FALSE(event.isSet());
}

TEST(WaitAny, LowestSignalledIndexWins) {
  Event first;
  Event second;
  Event third;
  third.set();
  EXPECT_EQ(waitAny({&first, &second, &third}), 2u);
  second.set();
  EXPECT_EQ(waitAny({&first, &second, &third}), 1u);
  first.set();
  EXPECT_EQ(waitAny({&first, &second, &third}), 0u);
}

TEST(WaitAny, ManyHandlesAreAllLookedAt) {
  std::vector<Event> events(40);
  std::vector<const Waitable*> handles;
  handles.reserve(events.size());
  for (const Event& event : events) handles.push_back(&event);
  events.back().set();
  EXPECT_EQ(waitAny(Waitables(handles)), 39u);
}

TEST(WaitAny, GivesUpAfterItsTimeout) {
  Event event;
  EXPECT_EQ(waitAny({&event}, milliseconds(0)), std::nullopt);
  EXPECT_EQ(waitAny({&event}, milliseconds(5)), std::nullopt);
}

TEST(WaitAny, ClosedDescriptorIsAnErrorAndNoEndlessWait) {
  class Closed : public Waitable {
    int descriptor() const noexcept override { return 1'000'000; }
  } closed;
  EXPECT_THROW(static_cast<void>(waitAny({&closed})), std::system_error);
}

TEST(Timer, FiresOnceItsTimeHasGoneByAndStaysSo) {
  const auto start = std::chrono::steady_clock::now();
  const Timer timer(milliseconds(20));
  EXPECT_EQ(waitAny({&timer}), 0u);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(20));
  EXPECT_TRUE(timer.isSignalled());
}

TEST(Timer, WithoutDelayFiresAtOnce) {
  const Timer timer(milliseconds(0));
  EXPECT_EQ(waitAny({&timer}), 0u);
}

}  // namespace
}  // namespace forgeyard
