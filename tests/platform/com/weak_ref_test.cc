#include "platform/com/weak_ref.h"

#include <optional>

#include "tests/platform/com/live_objects.h"

namespace forgeyard {
namespace {

struct INamed : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("A2000001-0000-0000-0000-000000000000");
  virtual int name() = 0;
};

class Parent;

// Looks at its parent when it goes.
class Child final : public ComObject<INamed> {
 public:
  explicit Child(INamed* parent, std::optional<bool>* parentWasThere)
      : parent_(parent), parentWasThere_(parentWasThere) {}
  ~Child() override { *parentWasThere_ = static_cast<bool>(parent_.lock()); }
  int name() override { return 2; }
  bool hasParent() const { return static_cast<bool>(parent_); }

 private:
  WeakRef<INamed> parent_;
  std::optional<bool>* parentWasThere_;
};

class Parent final : public ComObject<INamed, WeakSource> {
 public:
  explicit Parent(std::optional<bool>* parentWasThere = nullptr) {
    if (parentWasThere) child_ = make<Child>(this, parentWasThere);
  }
  ~Parent() override { child_ = nullptr; }
  int name() override { return 1; }
  Ref<Child> child() const { return child_; }

 private:
  Ref<Child> child_;
};

class Plain final : public ComObject<INamed> {
 public:
  int name() override { return 3; }
};

using WeakRefs = NoObjectLeft;

TEST_F(WeakRefs, CountNothingAndReadNullOnceTheTargetHasGone) {
  auto target = make<Parent>();
  const WeakRef<INamed> weak(static_cast<INamed*>(target.get()));
  const WeakRef<INamed> copy = weak;  // NOLINT: the copy is the point
  EXPECT_EQ(referencesTo(target.get()), 1u);
  EXPECT_EQ(weak.get(), target.get());
  {
    const Ref<INamed> locked = weak.lock();
    ASSERT_TRUE(locked);
    target = nullptr;
    EXPECT_EQ(copy.lock()->name(), 1);
  }
  EXPECT_FALSE(weak);
  EXPECT_EQ(weak.get(), nullptr);
  EXPECT_FALSE(copy.lock());
}

TEST_F(WeakRefs, ToATargetThatIsEndingReadNull) {
  std::optional<bool> parentWasThere;
  auto parent = make<Parent>(&parentWasThere);
  EXPECT_TRUE(parent->child()->hasParent());
  parent = nullptr;
  EXPECT_EQ(parentWasThere, false);
}

TEST_F(WeakRefs, MadeByAConstructorDoNotEndTheTarget) {
  std::optional<bool> parentWasThere;
  const auto parent = make<Parent>(&parentWasThere);
  EXPECT_EQ(parent->name(), 1);
  EXPECT_EQ(parentWasThere, std::nullopt);
}

TEST_F(WeakRefs, ToNothingOrToAnObjectThatOffersNoneReadNull) {
  const auto plain = make<Plain>();
  EXPECT_FALSE(WeakRef<INamed>(plain.get()));
  EXPECT_FALSE(WeakRef<INamed>(nullptr));
  EXPECT_FALSE(WeakRef<INamed>().lock());
}

}  // namespace
}  // namespace forgeyard
