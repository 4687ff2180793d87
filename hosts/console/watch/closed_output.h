#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include "platform/threads/waitable.h"

namespace forgeyard::console {

// Is signalled when nobody reads the pipe any more that standard output is. Of an output of another kind,
// never.
class ClosedOutput final : public Waitable {
 public:
  ClosedOutput() {
    struct stat status {};
    pipe_ = ::fstat(STDOUT_FILENO, &status) == 0 && S_ISFIFO(status.st_mode);
  }

  int descriptor() const noexcept override { return pipe_ ? STDOUT_FILENO : -1; }

 private:
  bool pipe_ = false;
};

}  // namespace forgeyard::console
