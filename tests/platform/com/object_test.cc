#include "platform/com/object.h"

#include <thread>
#include <utility>
#include <vector>

#include "tests/platform/com/live_objects.h"

namespace forgeyard {
namespace {

struct IBase : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("A1000001-0000-0000-0000-000000000000");
  virtual int base() = 0;
};
struct IDerived : IBase {
  using Base = IBase;
  static constexpr Guid iid = guid("A1000002-0000-0000-0000-000000000000");
  virtual int derived() = 0;
};
struct IInGroup : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("A1000003-0000-0000-0000-000000000000");
  virtual int inGroup() = 0;
};
struct IDeepInGroup : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("A1000004-0000-0000-0000-000000000000");
  virtual int deepInGroup() = 0;
};
struct ILast : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("A1000005-0000-0000-0000-000000000000");
  virtual int last() = 0;
};

// Groups with data of their own, one inside the other, so that no interface but the first lies at the
// beginning.
class InnerGroup : public IDeepInGroup {
 public:
  using Implements = TypeList<IDeepInGroup>;
  int deepInGroup() override { return four_; }

 private:
  int four_ = 4;
};
class OuterGroup : public IInGroup, public InnerGroup {
 public:
  using Implements = TypeList<IInGroup, InnerGroup>;
  int inGroup() override { return three_; }

 private:
  int three_ = 3;
};

class Whole final : public ComObject<IDerived, OuterGroup, ILast> {
 public:
  explicit Whole(int* destroyed = nullptr) : destroyed_(destroyed) {}
  ~Whole() override {
    if (destroyed_) ++*destroyed_;
  }
  int base() override { return 1; }
  int derived() override { return 2; }
  int last() override { return 5; }

 private:
  int* destroyed_;
};

class GroupFirst final : public ComObject<OuterGroup, ILast> {
 public:
  int last() override { return 5; }
};

using ComObjects = NoObjectLeft;
using Refs = NoObjectLeft;

// Each interface of `object` leads to each, to one IUnknown and to working calls.
template <class... Is>
void expectWholeIdentity(IUnknown* object) {
  const Ref<IUnknown> identity = query<IUnknown>(object);
  const auto from = [&]<class I>(std::type_identity<I>) {
    const Ref<I> one = query<I>(object);
    ASSERT_TRUE(one);
    EXPECT_EQ(query<IUnknown>(one.get()), identity);
    EXPECT_TRUE((static_cast<bool>(one.template as<Is>()) && ...));
    EXPECT_TRUE((sameObject(one.get(), query<Is>(object).get()) && ...));
  };
  (from(std::type_identity<Is>{}), ...);
}

TEST_F(ComObjects, LeadFromEachInterfaceToEachAndHaveOneIdentity) {
  const auto whole = make<Whole>();
  expectWholeIdentity<IBase, IDerived, IInGroup, IDeepInGroup, ILast>(static_cast<IDerived*>(whole.get()));
  const auto group = make<GroupFirst>();
  expectWholeIdentity<IInGroup, IDeepInGroup, ILast>(static_cast<ILast*>(group.get()));
}

TEST_F(ComObjects, AnswerThroughEveryInterface) {
  const Ref<IUnknown> object = make<Whole>().as<IUnknown>();
  EXPECT_EQ(object.as<IBase>()->base(), 1);
  EXPECT_EQ(object.as<IDerived>()->derived(), 2);
  EXPECT_EQ(object.as<IInGroup>()->inGroup(), 3);
  EXPECT_EQ(object.as<IDeepInGroup>()->deepInGroup(), 4);
  EXPECT_EQ(object.as<ILast>()->last(), 5);
}

TEST_F(ComObjects, NullTheOutPointerForAnInterfaceTheyHaveNot) {
  const auto object = make<GroupFirst>();
  void* out = object.get();
  EXPECT_EQ(object->QueryInterface(IDerived::iid, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(object->QueryInterface(GUID_NULL, &out), E_NOINTERFACE);
  EXPECT_EQ(referencesTo(object.get()), 1u);
}

class Throwing final : public ComObject<ILast> {
 public:
  Throwing() { throw StatusError(E_FAIL); }
  int last() override { return 0; }
};

TEST_F(ComObjects, ThatFailToBeMadeAreNotCounted) {
  EXPECT_THROW(make<Throwing>(), StatusError);
}

// Hands out references to itself where none is held from outside.
class SelfReferring final : public ComObject<ILast> {
 public:
  explicit SelfReferring(std::vector<int>* events) : events_(events) {
    use();
    events_->push_back(1);
  }
  ~SelfReferring() override {
    use();
    events_->push_back(2);
  }
  int last() override { return 5; }

 private:
  void use() {
    const Ref<ILast> self(this);
    EXPECT_TRUE(self.as<IUnknown>());
  }

  std::vector<int>* events_;
};

TEST_F(ComObjects, SurviveReferencesFromTheirOwnConstructorAndDestructor) {
  std::vector<int> events;
  {
    const auto object = make<SelfReferring>(&events);
    EXPECT_EQ(referencesTo(object.get()), 1u);
  }
  EXPECT_EQ(events, (std::vector{1, 2}));
}

TEST_F(ComObjects, EndOnceHoweverManyThreadsLetGo) {
  int destroyed = 0;
  auto object = make<Whole>(&destroyed);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([held = Ref<ILast>(object)] {
      for (int round = 0; round < 2000; ++round) {
        const Ref<ILast> copy = held;
        EXPECT_TRUE(copy.as<IBase>());
      }
    });
  }
  object = nullptr;
  for (std::thread& thread : threads) thread.join();
  threads.clear();
  EXPECT_EQ(destroyed, 1);
}

TEST_F(Refs, CountWhatTheyShareAndNothingElse) {
  int destroyed = 0;
  Ref<Whole> first = make<Whole>(&destroyed);
  EXPECT_EQ(referencesTo(first.get()), 1u);
  Ref<Whole> copy = first;
  EXPECT_EQ(referencesTo(first.get()), 2u);
  Ref<Whole> moved = std::move(copy);
  EXPECT_EQ(referencesTo(first.get()), 2u);
  EXPECT_FALSE(copy);  // NOLINT: moved from is null by design
  const Ref<IBase> shared = moved;
  EXPECT_EQ(referencesTo(first.get()), 3u);
  const Ref<IDerived> taken = std::move(moved);
  EXPECT_EQ(referencesTo(first.get()), 3u);
  EXPECT_FALSE(moved);  // NOLINT
  const Ref<ILast> borrowed = first.get();
  EXPECT_EQ(referencesTo(first.get()), 4u);
  EXPECT_EQ(destroyed, 0);
}

TEST_F(Refs, LetGoWhenSomethingElseIsAssigned) {
  int destroyed = 0;
  Ref<Whole> ref = make<Whole>(&destroyed);
  ref = make<Whole>(&destroyed);
  EXPECT_EQ(destroyed, 1);
  const Ref<Whole>& same = ref;
  ref = same;
  EXPECT_EQ(destroyed, 1);
  ref = std::move(ref);  // NOLINT
  ASSERT_TRUE(ref);
  EXPECT_EQ(ref->derived(), 2);
  ref = nullptr;
  EXPECT_EQ(destroyed, 2);
}

// Its end comes back to the reference that let go of it.
class Parting final : public ComObject<ILast> {
 public:
  explicit Parting(Ref<Parting>* holder) : holder_(holder) {}
  ~Parting() override { EXPECT_FALSE(*holder_); }
  int last() override { return 0; }

 private:
  Ref<Parting>* holder_;
};

TEST_F(Refs, AreNullBeforeTheObjectEnds) {
  Ref<Parting> ref;
  ref = make<Parting>(&ref);
  ref = nullptr;
}

}  // namespace
}  // namespace forgeyard
