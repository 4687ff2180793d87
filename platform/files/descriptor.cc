#include "platform/files/descriptor.h"

#include <unistd.h>

namespace forgeyard {

void Descriptor::reset(int owned) noexcept {
  if (fd_ >= 0) ::close(fd_);  // Linux has freed it even when it reports EINTR
  fd_ = owned;
}

}  // namespace forgeyard
