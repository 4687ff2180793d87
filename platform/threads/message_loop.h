#pragma once

#include <cstddef>
#include <optional>

#include "platform/threads/event.h"
#include "platform/threads/waitable.h"

namespace forgeyard {

// How an apartment's thread sleeps and is woken. A host with an event loop of its own puts that behind this
// interface; its wait() then serves the host's events too and may be entered again from inside one.
class MessageLoop {
 public:
  virtual ~MessageLoop() = default;

  // Blocks until a handle is signalled (its index; the lowest wins, and handles win over wake-ups) or wake()
  // was called since the last return of this function without an index (nothing). On the apartment's thread.
  virtual std::optional<std::size_t> wait(Waitables handles) = 0;

  // Makes wait() return, the running one or else the next. Where the host's own loop runs instead, it calls
  // Apartment::pumpPending() soon after. Any thread; once for many wake-ups is enough.
  virtual void wake() noexcept = 0;
};

// The loop of a host that has none: one poll.
class PollLoop : public MessageLoop {
 public:
  std::optional<std::size_t> wait(Waitables handles) override;
  void wake() noexcept override { wake_.set(); }

 private:
  Event wake_;
};

}  // namespace forgeyard
