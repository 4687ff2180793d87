#include "platform/com/connection_point.h"

#include <functional>
#include <vector>

#include "tests/platform/com/live_objects.h"

namespace forgeyard {
namespace {

struct IClockEvents : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("A4000001-0000-0000-0000-000000000000");
  virtual bool tick() = 0;
};
struct IOtherEvents : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("A4000002-0000-0000-0000-000000000000");
};

class Clock final : public ComObject<ConnectionPoints<IClockEvents, IPropertyNotifySink>> {
 public:
  using ConnectionPoints::dropSinks;
  using ConnectionPoints::notify;
  void tick() {
    point<IClockEvents>()->fire([](IClockEvents& sink) { static_cast<void>(sink.tick()); });
  }
  void tickUntilRefused() {
    point<IClockEvents>()->fire([](IClockEvents& sink) { return sink.tick(); });
  }
};

// Writes its name to a log and does what the test wants meanwhile.
class Sink final : public ComObject<IClockEvents> {
 public:
  Sink(std::string* log, char name) : log_(log), name_(name) {}
  bool tick() override {
    *log_ += name_;
    if (meanwhile) meanwhile();
    return answer;
  }
  std::function<void()> meanwhile;
  bool answer = true;

 private:
  std::string* log_;
  char name_;
};

class PropertySink final : public ComObject<IPropertyNotifySink> {
 public:
  HRESULT OnChanged(std::int32_t id) override {
    ids.push_back(id);
    return E_FAIL;
  }
  HRESULT OnRequestEdit(std::int32_t) override { return S_OK; }
  std::vector<std::int32_t> ids;
};

class ConnectionPointTest : public NoObjectLeft {
 protected:
  ~ConnectionPointTest() override {
    for (const auto& sink : {a_, b_, c_}) sink->meanwhile = nullptr;
    a_ = b_ = c_ = nullptr;
    clock_ = nullptr;
  }

  IUnknown* source() const { return static_cast<IConnectionPointContainer*>(clock_.get()); }
  Ref<IConnectionPoint> point() const {
    Ref<IConnectionPoint> found;
    EXPECT_EQ(clock_->FindConnectionPoint(IClockEvents::iid, &found), S_OK);
    return found;
  }
  std::uint32_t advise(const Ref<Sink>& sink) const {
    std::uint32_t cookie = 0;
    EXPECT_EQ(point()->Advise(sink.get(), &cookie), S_OK);
    return cookie;
  }
  void unadvise(std::uint32_t cookie) const { EXPECT_EQ(point()->Unadvise(cookie), S_OK); }

  std::string log_;
  Ref<Clock> clock_ = make<Clock>();
  Ref<Sink> a_ = make<Sink>(&log_, 'a');
  Ref<Sink> b_ = make<Sink>(&log_, 'b');
  Ref<Sink> c_ = make<Sink>(&log_, 'c');
};

TEST_F(ConnectionPointTest, CallsSinksInTheOrderInWhichTheyCame) {
  advise(b_);
  const std::uint32_t gone = advise(a_);
  advise(c_);
  clock_->tick();
  unadvise(gone);
  clock_->tick();
  EXPECT_EQ(log_, "bacbc");
}

TEST_F(ConnectionPointTest, StopsAtTheFirstSinkThatRefuses) {
  for (const auto& sink : {a_, b_, c_}) advise(sink);
  b_->answer = false;
  clock_->tickUntilRefused();
  EXPECT_EQ(log_, "ab");
  clock_->tick();
  EXPECT_EQ(log_, "ababc");
}

TEST_F(ConnectionPointTest, ASinkMayLeaveFromItsOwnCall) {
  const std::uint32_t cookie = advise(a_);
  advise(b_);
  a_->meanwhile = [&] { unadvise(cookie); };
  clock_->tick();
  clock_->tick();
  EXPECT_EQ(log_, "abb");
}

TEST_F(ConnectionPointTest, ASinkThatLeftMeanwhileIsNotCalledAnyMore) {
  advise(a_);
  const std::uint32_t b = advise(b_);
  advise(c_);
  a_->meanwhile = [&] { unadvise(b); };
  clock_->tick();
  EXPECT_EQ(log_, "ac");
}

TEST_F(ConnectionPointTest, ASinkThatCameMeanwhileIsCalledTheNextTime) {
  advise(a_);
  a_->meanwhile = [&] {
    a_->meanwhile = nullptr;
    advise(b_);
  };
  clock_->tick();
  EXPECT_EQ(log_, "a");
  clock_->tick();
  EXPECT_EQ(log_, "aab");
}

TEST_F(ConnectionPointTest, MayBeFiredFromInsideACall) {
  advise(a_);
  advise(b_);
  a_->meanwhile = [&] {
    a_->meanwhile = nullptr;
    clock_->tick();
  };
  clock_->tick();
  EXPECT_EQ(log_, "aabb");
}

TEST_F(ConnectionPointTest, NoSinkIsCalledOnceTheSourceHasEnded) {
  advise(a_);
  advise(b_);
  a_->meanwhile = [&] { clock_ = nullptr; };
  clock_->tick();
  EXPECT_EQ(log_, "a");
}

TEST_F(ConnectionPointTest, ASinkAloneKeepsNothingAliveOnceTheSourceHasEnded) {
  // The sink holds the point by its advice, and the point the sink.
  struct Listener final : ComObject<IClockEvents> {
    bool tick() override { return true; }
    Advice advice;
  };
  const long before = liveObjects.load();
  auto listener = make<Listener>();
  EXPECT_EQ(listener->advice.connect<IClockEvents>(source(), listener.get()), S_OK);
  listener = nullptr;
  EXPECT_EQ(liveObjects.load(), before + 1);
  clock_ = nullptr;
  EXPECT_LT(liveObjects.load(), before);
}

TEST_F(ConnectionPointTest, OutlivesItsSourceInAClientsHand) {
  const std::uint32_t cookie = advise(a_);
  const Ref<IConnectionPoint> held = point();
  clock_ = nullptr;
  EXPECT_EQ(referencesTo(a_.get()), 1u);
  EXPECT_EQ(held->Unadvise(cookie), CONNECT_E_NOCONNECTION);
  Guid iid;
  EXPECT_EQ(held->GetConnectionInterface(&iid), S_OK);
  EXPECT_EQ(iid, IClockEvents::iid);
}

TEST_F(ConnectionPointTest, RefusesWhatItCannotServe) {
  std::uint32_t cookie = 99;
  EXPECT_EQ(point()->Advise(make<PropertySink>().get(), &cookie), E_NOINTERFACE);
  EXPECT_EQ(cookie, 0u);
  EXPECT_EQ(point()->Advise(nullptr, &cookie), E_NOINTERFACE);
  EXPECT_EQ(point()->Unadvise(0), CONNECT_E_NOCONNECTION);
  const std::uint32_t gone = advise(a_);
  unadvise(gone);
  EXPECT_EQ(point()->Unadvise(gone), CONNECT_E_NOCONNECTION);
  Ref<IConnectionPoint> none = point();
  EXPECT_EQ(clock_->FindConnectionPoint(IOtherEvents::iid, &none), CONNECT_E_NOCONNECTION);
  EXPECT_FALSE(none);
}

TEST_F(ConnectionPointTest, NotifiesOfPropertiesWhateverASinkAnswers) {
  const auto first = make<PropertySink>();
  const auto second = make<PropertySink>();
  Advice one;
  Advice two;
  EXPECT_EQ(one.connect<IPropertyNotifySink>(source(), first.get()), S_OK);
  EXPECT_EQ(two.connect<IPropertyNotifySink>(source(), second.get()), S_OK);
  clock_->notify(7);
  clock_->notify(-4);
  EXPECT_EQ(first->ids, (std::vector<std::int32_t>{7, -4}));
  EXPECT_EQ(second->ids, first->ids);
}

TEST_F(ConnectionPointTest, AnAdviceEndsWithItsOwner) {
  {
    Advice advice;
    EXPECT_EQ(advice.connect<IClockEvents>(source(), a_.get()), S_OK);
    EXPECT_TRUE(advice);
    clock_->tick();
  }
  clock_->tick();
  EXPECT_EQ(log_, "a");
}

TEST_F(ConnectionPointTest, AnAdviceThatFailsIsNone) {
  Advice advice;
  EXPECT_EQ(advice.connect<IClockEvents>(static_cast<IUnknown*>(nullptr), a_.get()), E_NOINTERFACE);
  EXPECT_EQ(advice.connect<IClockEvents>(static_cast<IClockEvents*>(a_.get()), b_.get()), E_NOINTERFACE);
  const auto other = make<PropertySink>();
  EXPECT_EQ(advice.connect<IPropertyNotifySink>(source(), nullptr), E_NOINTERFACE);
  EXPECT_FALSE(advice);
  advice.disconnect();
}

}  // namespace
}  // namespace forgeyard
