#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "platform/threads/event.h"
#include "platform/threads/waitable.h"

namespace forgeyard {

// A thread with a name (as debuggers show it, at most 15 bytes). Is signalled when its body has returned.
// There is no way to end it from outside: give its body a cancellable read or an event to wait on. Destroying
// the object joins, unless detach() was called.
class Thread : public Waitable {
 public:
  // Throws std::system_error when the thread could not be started. What the body throws is dropped.
  Thread(const std::string& name, std::function<void()> body);
  ~Thread() override;

  int descriptor() const noexcept override;
  // Waits without serving calls: never join a thread that calls this thread's apartment; wait for it pumping
  // first.
  void join();
  // Lets it run on by itself. The object may still be waited on.
  void detach();

  // Threads made here whose bodies have not returned, detached ones included. A module whose code they run
  // must stay loaded until this is 0.
  static std::size_t running() noexcept;
  // Waits until running() is 0.
  static void waitForAll();

 private:
  struct State;
  std::shared_ptr<State> state_;
  std::thread thread_;
};

}  // namespace forgeyard
