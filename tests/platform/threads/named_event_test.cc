#include "platform/threads/named_event.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/threads/thread.h"
#include "tests/platform/support/scratch.h"
#include "tests/platform/threads/child_process.h"

namespace forgeyard {
namespace {

using testing::HasSubstr;

using NamedEventTest = RuntimeTest;

TEST_F(NamedEventTest, HoldersOfOneNameShareOneEvent) {
  const auto a = NamedEvent::create("StopEvent");
  const auto b = NamedEvent::create("StopEvent");
  const auto c = NamedEvent::open("StopEvent");
  const auto other = NamedEvent::create("OtherEvent");
  ASSERT_TRUE(c);
  a->set();
  EXPECT_TRUE(b->isSet());
  EXPECT_TRUE(c->isSet());
  EXPECT_FALSE(other->isSet());
  a->set();
  c->set();
  b->reset();
  EXPECT_FALSE(a->isSet());
  EXPECT_FALSE(c->isSet());
}

TEST_F(NamedEventTest, OpenFindsNoneWhereNobodyHoldsIt) {
  EXPECT_FALSE(NamedEvent::open("StopEvent"));
  NamedEvent::create("StopEvent")->set();
  EXPECT_TRUE(std::filesystem::exists(scratch_ / "StopEvent.event"));
  EXPECT_FALSE(NamedEvent::open("StopEvent"));
}

TEST_F(NamedEventTest, StaysSetWhenTheSetterIsKilled) {
  const auto event = NamedEvent::create("StopEvent");
  ChildProcess setter({"set-event", "StopEvent"});
  ASSERT_EQ(setter.line(), "set");
  setter.kill();
  EXPECT_TRUE(event->isSet());
  event->reset();
  EXPECT_FALSE(event->isSet());
}

TEST_F(NamedEventTest, GoesWithItsLastHolder) {
  ChildProcess holder({"set-event", "StopEvent"});
  ASSERT_EQ(holder.line(), "set");
  {
    const auto event = NamedEvent::open("StopEvent");
    ASSERT_TRUE(event);
    EXPECT_TRUE(event->isSet());
  }
  holder.kill();
  EXPECT_FALSE(NamedEvent::open("StopEvent"));
  EXPECT_FALSE(NamedEvent::create("StopEvent")->isSet());
}

TEST_F(NamedEventTest, WakesEveryWaiterOfEveryProcess) {
  const auto event = NamedEvent::create("StopEvent");
  ChildProcess a({"wait-event", "StopEvent"});
  ChildProcess b({"wait-event", "StopEvent"});
  Event woken;
  Thread here("waiter", [&] {
    const auto own = NamedEvent::open("StopEvent");
    waitAny({own.get()});
    woken.set();
  });
  ASSERT_EQ(a.line(), "waiting");
  ASSERT_EQ(b.line(), "waiting");
  event->set();
  EXPECT_EQ(a.line(), "woken");
  EXPECT_EQ(b.line(), "woken");
  EXPECT_EQ(waitAny({&woken}), 0u);
  EXPECT_EQ(a.wait(), 0);
  EXPECT_EQ(b.wait(), 0);
  EXPECT_TRUE(event->isSet());
}

TEST_F(NamedEventTest, ChildDoesNotKeepItAlive) {
  auto event = NamedEvent::create("StopEvent");
  ChildProcess child({"hang"});
  ASSERT_EQ(child.line(), "ready");
  event.reset();
  EXPECT_FALSE(NamedEvent::open("StopEvent"));
}

std::string failureOf(const char* name) {
  try {
    NamedEvent::create(name);
  } catch (const std::system_error& error) {
    return error.what();
  }
  return "";
}

TEST_F(NamedEventTest, RefusesWhatIsNoEventAndSaysWhich) {
  writeFile(scratch_ / "file.event", "");
  std::filesystem::create_symlink("file.event", scratch_ / "link.event");
  std::filesystem::create_directory(scratch_ / "folder.event");
  for (const std::string name : {"file", "link", "folder"}) {
    EXPECT_THAT(failureOf(name.c_str()), HasSubstr(scratch_ / name + ".event")) << name;
  }
  EXPECT_EQ(readFile(scratch_ / "file.event"), "");
}

TEST_F(NamedEventTest, NameIsOnePlainWord) {
  for (const char* name : {"", ".", "..", "a/b", "../up", "a b", "a\nb"})
    EXPECT_NE(failureOf(name), "") << name;
  EXPECT_EQ(failureOf("a-B_9.x"), "");
}

}  // namespace
}  // namespace forgeyard
