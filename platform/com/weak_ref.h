#pragma once

#include <memory>
#include <utility>

#include "platform/com/ref.h"

namespace forgeyard {

// Asked by WeakRef; an object that back references point to lists WeakSource among its bases.
struct IWeakSource : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D70F0-93C4-4E6F-A8D1-2F60C1B49E01");

  // True until the last reference to the object has gone.
  virtual std::shared_ptr<const bool> Alive() = 0;
};

class WeakSource : public IWeakSource {
 public:
  std::shared_ptr<const bool> Alive() override { return alive_; }

 protected:
  WeakSource() = default;
  ~WeakSource() { expireWeakRefs(); }
  // Called by ComObject ahead of the destructor, within which nobody shall reach the object any more.
  void expireWeakRefs() { *alive_ = false; }

 private:
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

// A back reference that counts nothing and reads null once its target has gone, which begins with the
// target's destructor. An object that is no IWeakSource reads null at once.
template <class I>
class WeakRef {
 public:
  WeakRef() = default;
  explicit WeakRef(I* target) {
    if (const Ref<IWeakSource> source = query<IWeakSource>(target)) {
      target_ = target;
      alive_ = source->Alive();
    }
  }
  // Borrowed: for uses that end before the target can go.
  I* get() const { return alive_ && *alive_ ? target_ : nullptr; }
  Ref<I> lock() const { return Ref<I>(get()); }
  explicit operator bool() const { return get() != nullptr; }
  void reset() {
    target_ = nullptr;
    alive_.reset();
  }

 private:
  I* target_ = nullptr;
  std::shared_ptr<const bool> alive_;
};

}  // namespace forgeyard
