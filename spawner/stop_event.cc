#include "spawner/stop_event.h"

#include "spawner/kernel.h"
#include "spawner/text_buffer.h"

namespace forgeyard {
namespace {

uid_t user() noexcept {
  return static_cast<uid_t>(kernel::call(SYS_geteuid));
}

// Must name the directory that the hosts' named objects live in (platform/threads/runtime_directory.h).
void nameRuntimeDirectory(PathBuffer& path, const char* const* environment) noexcept {
  if (const char* exact = environmentValue(environment, "FORGEYARD_RUNTIME_DIR")) {
    path.add(exact);
  } else if (const char* session = environmentValue(environment, "XDG_RUNTIME_DIR")) {
    path.add(session).add("/forgeyard");
  } else {
    path.add("/tmp/forgeyard-").addNumber(user());
  }
}

// Someone else could have put it there first, to stop our tools.
bool isOwnDirectory(const char* path) noexcept {
  struct stat status {};
  return kernel::stat(path, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == user() && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

bool isOwnFifo(int fd) noexcept {
  struct stat status {};
  return kernel::stat(fd, &status) == 0 && S_ISFIFO(status.st_mode) && status.st_uid == user();
}

}  // namespace

const char* environmentValue(const char* const* environment, const char* name) noexcept {
  const unsigned long length = textLength(name);
  for (; *environment; ++environment) {
    const char* const entry = *environment;
    if (startsWith(entry, name) && entry[length] == '=')
      return entry[length + 1] ? entry + length + 1 : nullptr;
  }
  return nullptr;
}

int openStopEvent(const char* const* environment) noexcept {
  PathBuffer path;
  nameRuntimeDirectory(path, environment);
  if (!isOwnDirectory(path.text())) return -1;
  path.add("/StopEvent.event");
  if (path.wasCut()) return -1;
  // For reading and writing: a reader alone would be told of a hang-up for ever once the last writer has
  // gone.
  const int fd = kernel::open(path.text(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
  if (fd < 0) return -1;
  if (isOwnFifo(fd)) return fd;
  kernel::close(fd);
  return -1;
}

}  // namespace forgeyard
