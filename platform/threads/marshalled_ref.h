#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "platform/com/ref.h"
#include "platform/threads/apartment.h"

namespace forgeyard {

// A reference to an object of an apartment that any thread may carry, copy and drop. The object is touched
// and released on the apartment's thread alone; when the apartment ends it is released, and calls fail from
// then on.
template <class T>
class MarshalledRef {
 public:
  MarshalledRef() noexcept = default;
  // On the apartment's thread. Throws StatusError(CO_E_NOTINITIALIZED) if the calling thread owns none.
  explicit MarshalledRef(Ref<T> object);

  explicit operator bool() const noexcept { return shared_ != nullptr; }

  // Runs body(T&) on the apartment's thread and returns its result; see Apartment::call(). Not on a null
  // reference.
  template <class Body>
  auto call(Body&& body) const -> std::invoke_result_t<Body&, T&>;

  // The same for a body that returns HRESULT: a call that fails to reach the object is a failed status.
  template <class Body>
  HRESULT status(Body&& body) const noexcept {
    return guard([&] { return call(body); });
  }

 private:
  struct ObjectStub : Apartment::Stub {
    explicit ObjectStub(Ref<T> kept) noexcept : object(std::move(kept)) {}
    void drop() noexcept override { object = nullptr; }
    Ref<T> object;  // null once the apartment has ended
  };
  // Dies with the last copy, on whatever thread, and hands the stub back to the owner's.
  struct Shared {
    ~Shared() { apartment->dropStub(stub); }
    std::shared_ptr<Apartment> apartment;
    std::shared_ptr<ObjectStub> stub;
  };

  std::shared_ptr<const Shared> shared_;
};

template <class T>
MarshalledRef<T>::MarshalledRef(Ref<T> object) {
  if (!object) return;
  const std::shared_ptr<Apartment> apartment = Apartment::currentShared();
  auto stub = std::make_shared<ObjectStub>(std::move(object));
  apartment->addStub(stub);
  shared_.reset(new Shared{apartment, std::move(stub)});
}

template <class T>
template <class Body>
auto MarshalledRef<T>::call(Body&& body) const -> std::invoke_result_t<Body&, T&> {
  ObjectStub& stub = *shared_->stub;
  return shared_->apartment->call([&]() -> std::invoke_result_t<Body&, T&> {
    // Held for the call: the body may wait, and the last reference be dropped meanwhile.
    const Ref<T> object = stub.object;
    if (!object) throw StatusError(RPC_E_DISCONNECTED);
    return body(*object);
  });
}

}  // namespace forgeyard
