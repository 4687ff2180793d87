#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include "platform/com/ref.h"

namespace forgeyard {

// Objects alive that this binary made, plus server locks. Each program and module has a count of its own,
// which is what lets a module say that it may be unloaded.
[[gnu::visibility("hidden")]] inline std::atomic<long> liveObjects{0};

// A base class that implements several interfaces for derived classes lists them as `using Implements =
// TypeList<...>`; such a base stands in ComObject's list like an interface.
template <class...>
struct TypeList {};

namespace detail {

// The interface I of an object, or one that I derives from.
template <class I, class From>
void* castChain(From* object, const Guid& iid) {
  if constexpr (std::is_void_v<I>) {
    return nullptr;
  } else {
    if (iid == I::iid) return static_cast<I*>(object);
    // Single inheritance: the base interface stands at the same address.
    return castChain<typename I::Base>(static_cast<I*>(object), iid);
  }
}

template <class Object, class... Is>
void* castList(Object* object, const Guid& iid, TypeList<Is...>);

template <class I, class Object>
void* castOne(Object* object, const Guid& iid) {
  if constexpr (requires { typename I::Implements; }) {
    return castList(static_cast<I*>(object), iid, typename I::Implements{});
  } else {
    return castChain<I>(static_cast<I*>(object), iid);
  }
}

template <class Object, class... Is>
void* castList(Object* object, const Guid& iid, TypeList<Is...>) {
  void* found = nullptr;
  static_cast<void>(((found = castOne<Is>(object, iid)) || ...));
  return found;
}

}  // namespace detail

// Base of every object: the count of references and the query over the listed interfaces, in order. The first
// listed interface gives the object's identity. Make objects with make<T>().
template <class... Interfaces>
class ComObject : public Interfaces... {
 public:
  ComObject() { liveObjects.fetch_add(1, std::memory_order_relaxed); }
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT QueryInterface(const Guid& iid, void** out) override {
    *out = detail::castList(this, iid, TypeList<Interfaces...>{});
    if (!*out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  std::uint32_t AddRef() override { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }
  std::uint32_t Release() override {
    const std::uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) end();
    return left;
  }

 protected:
  virtual ~ComObject() { liveObjects.fetch_sub(1, std::memory_order_relaxed); }

 private:
  static constexpr std::uint32_t kEnding = 1u << 31;

  void end() {
    if constexpr (requires { this->expireWeakRefs(); }) this->expireWeakRefs();
    // References that the destructor makes to its own object come and go without ending it once more.
    references_.store(kEnding, std::memory_order_relaxed);
    delete this;
  }

  // The reference of who makes the object, so that a constructor may hand out further ones.
  std::atomic<std::uint32_t> references_{1};
};

// A new object with one reference.
template <class T, class... Args>
Ref<T> make(Args&&... args) {
  return Ref<T>::adopt(new T(std::forward<Args>(args)...));
}

}  // namespace forgeyard
