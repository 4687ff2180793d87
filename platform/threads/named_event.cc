#include "platform/threads/named_event.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "platform/files/os_error.h"
#include "platform/threads/runtime_directory.h"

// The event is a FIFO that its holders keep open for reading and writing: bytes in it mean set. The kernel
// keeps the bytes as long as anyone has it open, whoever wrote them, and drops them with the last holder. It
// is never removed: that would make two events of one name.

namespace forgeyard {
namespace {

constexpr int commonFlags = O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW;

void requireOwnFifo(int fd, const std::string& file) {
  struct stat info {};
  if (::fstat(fd, &info) != 0) detail::throwErrno("event " + file);
  if (!S_ISFIFO(info.st_mode)) detail::throwErrno("event " + file + " is no FIFO", EEXIST);
  if (info.st_uid != ::geteuid()) {
    detail::throwErrno("event " + file + " belongs to user " + std::to_string(info.st_uid), EPERM);
  }
}

// Read and write: a reader alone would be told of a hang-up for ever once the last writer has gone.
Descriptor openBoth(const std::string& file) {
  Descriptor fd(::open(file.c_str(), O_RDWR | commonFlags));
  if (!fd) detail::throwErrno("opening event " + file);
  requireOwnFifo(fd.get(), file);
  return fd;
}

}  // namespace

std::unique_ptr<NamedEvent> NamedEvent::create(std::string_view name) {
  const std::string file = runtimeFile(name, ".event");
  if (::mkfifo(file.c_str(), 0600) != 0 && errno != EEXIST) detail::throwErrno("making event " + file);
  return std::unique_ptr<NamedEvent>(new NamedEvent(openBoth(file)));
}

std::unique_ptr<NamedEvent> NamedEvent::open(std::string_view name) {
  const std::string file = runtimeFile(name, ".event");
  // Succeeds only where somebody reads, that is, holds it; and keeps it alive until we hold it ourselves.
  const Descriptor probe(::open(file.c_str(), O_WRONLY | commonFlags));
  if (!probe && (errno == ENOENT || errno == ENXIO)) return nullptr;
  if (!probe) detail::throwErrno("opening event " + file);
  return std::unique_ptr<NamedEvent>(new NamedEvent(openBoth(file)));
}

void NamedEvent::set() noexcept {
  const char one = 1;
  // Full means set as well.
  if (!isSet()) static_cast<void>(detail::retry([&] { return ::write(fd_.get(), &one, 1); }));
}

void NamedEvent::reset() noexcept {
  char bytes[256];
  while (detail::retry([&] { return ::read(fd_.get(), bytes, sizeof bytes); }) > 0) {
  }
}

}  // namespace forgeyard
