#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <initializer_list>
#include <list>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "platform/com/status.h"
#include "platform/threads/message_loop.h"
#include "platform/threads/waitable.h"

namespace forgeyard {

// The apartment's thread has gone, and its objects with it.
inline constexpr HRESULT RPC_E_DISCONNECTED = detail::status(0x80010108);
// The operation belongs to the apartment's own thread.
inline constexpr HRESULT RPC_E_WRONG_THREAD = detail::status(0x8001010E);
// No apartment has been entered.
inline constexpr HRESULT CO_E_NOTINITIALIZED = detail::status(0x800401F0);

// A single-threaded apartment: the thread that entered it owns objects, and other threads reach those only by
// calls that this thread executes while it waits. Entered through ApartmentScope; other threads carry the
// shared pointer, so that a call after the end fails and does not hang. Calls of one thread are executed in
// order.
class Apartment {
 public:
  // Use ApartmentScope.
  explicit Apartment(std::unique_ptr<MessageLoop> loop);
  ~Apartment();
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

  // The apartment of the calling thread, or null.
  static Apartment* current() noexcept;
  // The same to carry to other threads. Throws StatusError(CO_E_NOTINITIALIZED) if there is none.
  static std::shared_ptr<Apartment> currentShared();
  // The first one entered in this process: that of the host's main thread. Throws
  // StatusError(CO_E_NOTINITIALIZED) if there is none. Any thread.
  static std::shared_ptr<Apartment> main();

  bool isOwner() const noexcept { return current() == this; }

  // Any thread: has `work` run on the owner's thread, later. False if the apartment has ended. What `work`
  // throws is dropped.
  bool post(std::function<void()> work);

  // Any thread: runs `body` on the owner's thread and returns its result (a value or nothing). Blocks without
  // serving calls. What the body throws is thrown here. Throws StatusError(RPC_E_DISCONNECTED) if the
  // apartment ended before it ran. From the owner's thread the body runs at once.
  template <class Body>
  std::invoke_result_t<Body&> call(Body&& body);

  // Any thread: ends the innermost run(), or the next one.
  void quit();

  // The rest belongs to the owner's thread: StatusError(RPC_E_WRONG_THREAD) elsewhere.

  // Waits until a handle is signalled, serving calls meanwhile, and returns its index: the lowest wins, and
  // handles are looked at before calls. May be entered again from inside a call.
  std::size_t waitPumping(Waitables handles);
  std::size_t waitPumping(std::initializer_list<const Waitable*> handles) {
    return waitPumping(Waitables(handles.begin(), handles.size()));
  }
  // Serves the calls that are waiting now, and returns whether there were any.
  bool pumpPending();
  // A host's main loop: serves calls until quit().
  void run();

 private:
  friend class ApartmentScope;
  template <class T>
  friend class MarshalledRef;

  // What the copies of a MarshalledRef share. The object in it is dropped on the owner's thread, at the
  // latest when the apartment ends.
  struct Stub {
    virtual ~Stub() = default;
    virtual void drop() noexcept = 0;
    bool listed = false;
    std::list<std::shared_ptr<Stub>>::iterator self;
  };
  struct Call;
  struct Item;
  struct Queue;

  void requireOwner() const;
  template <class Change>
  bool change(Change&& apply);
  bool enqueue(Item item);
  void callOwner(void (*invoke)(void*), void* argument);
  void serve(Call& call) noexcept;
  void answer(Call& call, std::exception_ptr error) noexcept;
  bool serveNext();
  void wakeForRest();
  bool takeQuit();
  void addStub(std::shared_ptr<Stub> stub);
  void dropStub(std::shared_ptr<Stub> stub) noexcept;
  void removeStub(const std::shared_ptr<Stub>& stub) noexcept;
  void end() noexcept;

  const std::unique_ptr<MessageLoop> loop_;
  const std::unique_ptr<Queue> queue_;
  std::list<std::shared_ptr<Stub>> stubs_;  // owner's thread
};

// The calling thread owns an apartment for the life time of this object. At the end calls that still wait
// fail, and marshalled references are released. The first scope of the process makes Apartment::main().
class ApartmentScope {
 public:
  explicit ApartmentScope(std::unique_ptr<MessageLoop> loop = std::make_unique<PollLoop>());
  ~ApartmentScope();
  ApartmentScope(const ApartmentScope&) = delete;
  ApartmentScope& operator=(const ApartmentScope&) = delete;

  Apartment& operator*() const noexcept { return *apartment_; }
  Apartment* operator->() const noexcept { return apartment_.get(); }
  const std::shared_ptr<Apartment>& get() const noexcept { return apartment_; }

 private:
  bool outermost_;
  std::shared_ptr<Apartment> apartment_;
};

template <class Body>
std::invoke_result_t<Body&> Apartment::call(Body&& body) {
  using Result = std::invoke_result_t<Body&>;
  if (isOwner()) return body();
  if constexpr (std::is_void_v<Result>) {
    callOwner([](void* argument) { (*static_cast<std::remove_reference_t<Body>*>(argument))(); },
              const_cast<void*>(static_cast<const void*>(std::addressof(body))));
  } else {
    struct Frame {
      std::remove_reference_t<Body>& body;
      std::optional<Result> result;
    } frame{body, std::nullopt};
    callOwner(
        [](void* argument) {
          auto& inner = *static_cast<Frame*>(argument);
          inner.result.emplace(inner.body());
        },
        &frame);
    return std::move(*frame.result);
  }
}

}  // namespace forgeyard
