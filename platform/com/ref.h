#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "platform/com/unknown.h"

namespace forgeyard {

// A counted reference to an object through one of its interfaces (or its class); may be null. The only place
// that calls AddRef and Release.
template <class T>
class Ref {
 public:
  Ref() noexcept = default;
  Ref(std::nullptr_t) noexcept {}  // NOLINT: null converts
  // Shares: adds a reference.
  Ref(T* object) noexcept : object_(object) {  // NOLINT: borrowed pointers convert
    if (object_) object_->AddRef();
  }
  Ref(const Ref& other) noexcept : Ref(other.object_) {}
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class U>
  requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other)
  noexcept : Ref(static_cast<T*>(other.get())) {}  // NOLINT: to a base
  template <class U>
  requires std::is_convertible_v<U*, T*> Ref(Ref<U>&& other)
  noexcept : object_(std::exchange(other.object_, nullptr)) {}  // NOLINT
  ~Ref() {
    if (object_) object_->Release();
  }
  Ref& operator=(const Ref& other) noexcept {  // NOLINT(bugprone-unhandled-self-assignment): by a copy
    Ref copy(other);
    std::swap(object_, copy.object_);
    return *this;
  }
  Ref& operator=(Ref&& other) noexcept {
    Ref taken(std::move(other));
    std::swap(object_, taken.object_);
    return *this;
  }

  // Takes over a reference that is already counted.
  static Ref adopt(T* counted) noexcept {
    Ref result;
    result.object_ = counted;
    return result;
  }

  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  // The object's interface I, or null if it hasn't got it or this is null.
  template <class I>
  Ref<I> as() const {
    return query<I>(object_);
  }

  friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.object_ == b.object_; }
  friend bool operator==(const Ref& a, std::nullptr_t) noexcept { return a.object_ == nullptr; }

 private:
  template <class>
  friend class Ref;

  T* object_ = nullptr;
};

template <class I, class T>
Ref<I> query(T* object) {
  void* found = nullptr;
  if (!object || failed(object->QueryInterface(I::iid, &found))) return nullptr;
  return Ref<I>::adopt(static_cast<I*>(found));
}

// Whether two interface pointers belong to one object; two nulls do.
template <class A, class B>
bool sameObject(A* a, B* b) {
  if (static_cast<const void*>(a) == static_cast<const void*>(b)) return true;
  if (!a || !b) return false;
  return query<IUnknown>(a) == query<IUnknown>(b);
}

}  // namespace forgeyard
