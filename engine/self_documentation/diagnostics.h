#pragma once

#include "platform/com/unknown.h"

namespace forgeyard {

// Makes an object known to the diagnostics module "Watchpost.so", an aid of development that is loaded if it
// lies beside this module and never missed. A member of the object's last class or of one above it that is
// complete: the module may ask the object for interfaces at once. It must not keep a reference beyond the
// object's end.
class Diagnostics {
 public:
  explicit Diagnostics(IUnknown* object);
  Diagnostics(const Diagnostics&) = delete;
  Diagnostics& operator=(const Diagnostics&) = delete;
  ~Diagnostics();

 private:
  IUnknown* registered_ = nullptr;  // not counted
};

}  // namespace forgeyard
