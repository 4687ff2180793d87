#pragma once

#include <chrono>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>

namespace forgeyard {

// Something to wait for: a descriptor that polls readable as long as the thing is signalled. Waiting changes
// nothing in it. The object must live, and stay where it is, while anyone waits on it.
class Waitable {
 public:
  virtual ~Waitable() = default;
  Waitable(const Waitable&) = delete;
  Waitable& operator=(const Waitable&) = delete;

  // Borrowed: poll it, never read or close it.
  virtual int descriptor() const noexcept = 0;
  bool isSignalled() const noexcept;

 protected:
  Waitable() = default;
};

using Waitables = std::span<const Waitable* const>;

// Waits without serving calls, for threads that own no apartment. Returns the lowest index that is signalled,
// or nothing after `timeout` (negative: wait for ever). Throws std::system_error if a descriptor is not open.
std::optional<std::size_t> waitAny(Waitables handles,
                                   std::chrono::milliseconds timeout = std::chrono::milliseconds(-1));
inline std::optional<std::size_t> waitAny(std::initializer_list<const Waitable*> handles,
                                          std::chrono::milliseconds timeout = std::chrono::milliseconds(-1)) {
  return waitAny(Waitables(handles.begin(), handles.size()), timeout);
}

}  // namespace forgeyard
