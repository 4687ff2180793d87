#pragma once

#include "platform/files/descriptor.h"
#include "platform/threads/waitable.h"

namespace forgeyard {

// An event without a name that stays set until it is reset. Any thread may set, reset and wait. The
// constructor throws std::system_error when the process is out of descriptors.
class Event : public Waitable {
 public:
  Event();
  ~Event() override;

  void set() noexcept;
  void reset() noexcept;
  bool isSet() const noexcept { return isSignalled(); }
  int descriptor() const noexcept override { return fd_.get(); }

 private:
  Descriptor fd_;
};

}  // namespace forgeyard
