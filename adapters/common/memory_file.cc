#include "adapters/common/memory_file.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <system_error>

#include "adapters/common/whole_file.h"

namespace forgeyard {

MemoryFile::MemoryFile(const char* purpose, std::string_view content)
    : descriptor_(::memfd_create(purpose, MFD_CLOEXEC)) {
  int error = descriptor_ < 0 ? errno : 0;
  if (error == 0) error = writeAll(descriptor_, content);
  if (error == 0) return;
  if (descriptor_ >= 0) ::close(descriptor_);
  throw std::system_error(error, std::generic_category(), "cannot make a file in memory");
}

MemoryFile::~MemoryFile() {
  ::close(descriptor_);
}

void MemoryFile::keepOnExec() const noexcept {
  ::fcntl(descriptor_, F_SETFD, 0);
}

std::string MemoryFile::path() const {
  return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(descriptor_);
}

}  // namespace forgeyard
