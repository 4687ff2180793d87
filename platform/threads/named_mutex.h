#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/descriptor.h"
#include "platform/threads/waitable.h"

namespace forgeyard {

// A mutex that all processes of this user share by name. Each object is a holder of its own: two objects
// exclude each other even within one thread. A holder that is killed lets go at once. For one thread at a
// time.
class NamedMutex {
 public:
  struct Holder {
    pid_t process = 0;
    std::string program;
  };

  // Opens the file, not the lock. Throws std::system_error that says which file and why.
  explicit NamedMutex(std::string_view name);
  // Lets go.
  ~NamedMutex();
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;

  // Never blocks. True if this object holds it now, also if it did before.
  bool tryLock();
  // Does nothing if this object doesn't hold it.
  void unlock() noexcept;
  bool isHeld() const noexcept { return held_; }

  // Who holds it, for a message to a waiting user: what the present or last holder wrote. Nothing if nobody
  // does.
  std::optional<Holder> holder() const;

 private:
  void writeHolder() noexcept;

  std::string path_;
  Descriptor file_;
  bool held_ = false;
};

// Waits until `stop` is signalled (0) or the mutex is taken (1), without serving calls: for worker threads.
// When both are there, stop wins and the mutex is left alone.
std::size_t waitAny(const Waitable& stop, NamedMutex& mutex);

}  // namespace forgeyard
