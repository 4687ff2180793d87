#include "platform/threads/marshalled_ref.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/com/object.h"
#include "platform/threads/thread.h"

namespace forgeyard {
namespace {

struct IProbe : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("7A1C3E52-94D0-4B8E-9C55-0D6E2F1B8A01");
  virtual HRESULT use() = 0;

 protected:
  ~IProbe() = default;
};

// Remembers the threads that used and released it.
class Probe : public ComObject<IProbe> {
 public:
  struct Log {
    int uses = 0;
    bool released = false;
    std::thread::id releasedOn;
  };
  explicit Probe(Log& log) : log_(log) {}
  HRESULT use() override {
    ++log_.uses;
    return log_.uses == 3 ? E_FAIL : S_OK;
  }

 protected:
  ~Probe() override {
    log_.released = true;
    log_.releasedOn = std::this_thread::get_id();
  }

 private:
  Log& log_;
};

TEST(MarshalledRef, ObjectIsUsedAndReleasedOnTheOwnersThread) {
  Probe::Log log;
  const ApartmentScope scope;
  MarshalledRef<IProbe> carried(make<Probe>(log));
  std::vector<HRESULT> statuses;
  Thread thread("carrier", [&, mine = std::move(carried)]() mutable {
    const MarshalledRef<IProbe> copy = mine;
    mine = MarshalledRef<IProbe>();
    for (int i = 0; i < 3; ++i) statuses.push_back(copy.status([](IProbe& probe) { return probe.use(); }));
  });
  scope->waitPumping({&thread});
  scope->pumpPending();
  EXPECT_EQ(statuses, (std::vector<HRESULT>{S_OK, S_OK, E_FAIL}));
  EXPECT_TRUE(log.released);
  EXPECT_EQ(log.releasedOn, std::this_thread::get_id());
}

TEST(MarshalledRef, EndOfTheApartmentReleasesItAndFailsItsCalls) {
  Probe::Log log;
  MarshalledRef<IProbe> carried;
  {
    const ApartmentScope scope;
    carried = MarshalledRef<IProbe>(make<Probe>(log));
  }
  EXPECT_TRUE(log.released);
  const auto use = [](IProbe& probe) { return probe.use(); };
  EXPECT_EQ(carried.status(use), RPC_E_DISCONNECTED);
  HRESULT status = S_OK;
  Thread("carrier", [&] { status = carried.status(use); }).join();
  EXPECT_EQ(status, RPC_E_DISCONNECTED);
  EXPECT_EQ(log.uses, 0);
}

// An object that itself carries a reference, released while the apartment ends.
TEST(MarshalledRef, ReferencesInsideReferencesGoToo) {
  Probe::Log log;
  class Holder : public ComObject<IUnknown> {
   public:
    explicit Holder(MarshalledRef<IProbe> inner) : inner_(std::move(inner)) {}

   private:
    MarshalledRef<IProbe> inner_;
  };
  MarshalledRef<Holder> outer;
  {
    const ApartmentScope scope;
    outer = MarshalledRef<Holder>(make<Holder>(MarshalledRef<IProbe>(make<Probe>(log))));
  }
  EXPECT_TRUE(log.released);
}

TEST(MarshalledRef, StaysAliveForACallThatWaitsWhileItIsDropped) {
  Probe::Log log;
  const ApartmentScope scope;
  auto carried = std::make_unique<MarshalledRef<IProbe>>(make<Probe>(log));
  carried->call([&](IProbe& probe) {
    carried.reset();
    EXPECT_FALSE(log.released);
    EXPECT_EQ(probe.use(), S_OK);
  });
  EXPECT_TRUE(log.released);
}

}  // namespace
}  // namespace forgeyard
