#pragma once

#include <memory>

#include "platform/com/ref.h"

namespace forgeyard {

// Back references that count nothing. The target owns a WeakAnchor; links made from it read null once the
// target is gone or has cut them.
template <class T>
class WeakLink {
 public:
  WeakLink() = default;
  explicit WeakLink(std::shared_ptr<T*> holder) : holder_(std::move(holder)) {}
  Ref<T> lock() const { return holder_ ? Ref<T>(*holder_) : Ref<T>(); }
  // The target without a reference, for calls that end before it can go.
  T* get() const { return holder_ ? *holder_ : nullptr; }
  explicit operator bool() const { return get() != nullptr; }
  void reset() { holder_.reset(); }

 private:
  std::shared_ptr<T*> holder_;
};

template <class T>
class WeakAnchor {
 public:
  explicit WeakAnchor(T* target) : holder_(std::make_shared<T*>(target)) {}
  WeakAnchor(const WeakAnchor&) = delete;
  WeakAnchor& operator=(const WeakAnchor&) = delete;
  ~WeakAnchor() { *holder_ = nullptr; }
  WeakLink<T> link() const { return WeakLink<T>(holder_); }

 private:
  std::shared_ptr<T*> holder_;
};

}  // namespace forgeyard
