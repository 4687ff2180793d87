#pragma once

#include <chrono>

#include "platform/files/descriptor.h"
#include "platform/threads/waitable.h"

namespace forgeyard {

// Is signalled once `delay` has gone by since it was made, and stays so. Throws std::system_error when the
// process is out of descriptors.
class Timer : public Waitable {
 public:
  explicit Timer(std::chrono::milliseconds delay);
  int descriptor() const noexcept override { return fd_.get(); }

 private:
  Descriptor fd_;
};

}  // namespace forgeyard
