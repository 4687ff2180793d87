#include "platform/threads/named_mutex.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <mutex>

#include "platform/files/os_error.h"
#include "platform/threads/runtime_directory.h"

// The mutex is a lock on a whole file, which belongs to the open file: so each object opens its own. The
// kernel lets go when the holder dies. The file is never removed here; where somebody else removed it, the
// next to take the lock notices and starts anew.

namespace forgeyard {
namespace {

constexpr std::chrono::milliseconds retryDelay{10};

Descriptor openFile(const std::string& file) {
  Descriptor fd(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
  if (!fd) detail::throwErrno("opening mutex " + file);
  struct stat info {};
  if (::fstat(fd.get(), &info) != 0) detail::throwErrno("mutex " + file);
  if (!S_ISREG(info.st_mode)) detail::throwErrno("mutex " + file + " is no file", EEXIST);
  if (info.st_uid != ::geteuid()) {
    detail::throwErrno("mutex " + file + " belongs to user " + std::to_string(info.st_uid), EPERM);
  }
  return fd;
}

bool isRemoved(const Descriptor& file) {
  struct stat info {};
  return ::fstat(file.get(), &info) == 0 && info.st_nlink == 0;
}

// The race detector knows no file locks: what one holder wrote, the next one sees by way of this mutex too.
void passOn() {
  static std::mutex gate;
  const std::lock_guard<std::mutex> touch(gate);
}

}  // namespace

NamedMutex::NamedMutex(std::string_view name) : path_(runtimeFile(name, ".mutex")), file_(openFile(path_)) {}

NamedMutex::~NamedMutex() {
  unlock();
}

bool NamedMutex::tryLock() {
  if (held_) return true;
  for (;;) {
    if (detail::retry([&] { return ::flock(file_.get(), LOCK_EX | LOCK_NB); }) != 0) {
      if (errno == EWOULDBLOCK) return false;
      detail::throwErrno("locking mutex " + path_);
    }
    if (!isRemoved(file_)) break;
    file_ = openFile(path_);
  }
  held_ = true;
  passOn();
  writeHolder();
  return true;
}

void NamedMutex::unlock() noexcept {
  if (!held_) return;
  held_ = false;
  static_cast<void>(::ftruncate(file_.get(), 0));
  passOn();
  static_cast<void>(::flock(file_.get(), LOCK_UN));
}

// "<pid> <program>", for people and for holder(); a disk that is full loses a message, not the lock.
void NamedMutex::writeHolder() noexcept {
  const std::string text = std::to_string(::getpid()) + " " + program_invocation_short_name + "\n";
  if (::ftruncate(file_.get(), 0) == 0) {
    static_cast<void>(!::pwrite(file_.get(), text.data(), text.size(), 0));
  }
}

std::optional<NamedMutex::Holder> NamedMutex::holder() const {
  char text[256];
  const ssize_t size = ::pread(file_.get(), text, sizeof text, 0);
  if (size <= 0) return std::nullopt;
  const char* const end = text + size;
  Holder holder;
  const auto [next, error] = std::from_chars(text, end, holder.process);
  if (error != std::errc() || next == end || *next != ' ') return std::nullopt;
  holder.program.assign(next + 1, end);
  if (!holder.program.empty() && holder.program.back() == '\n') holder.program.pop_back();
  // A holder that was killed could not wipe its name out.
  if (::kill(holder.process, 0) != 0 && errno == ESRCH) return std::nullopt;
  return holder;
}

std::size_t waitAny(const Waitable& stop, NamedMutex& mutex) {
  std::chrono::milliseconds delay = std::chrono::milliseconds::zero();
  for (;;) {
    if (waitAny({&stop}, delay)) return 0;
    if (mutex.tryLock()) break;
    delay = retryDelay;
  }
  if (!stop.isSignalled()) return 1;
  mutex.unlock();
  return 0;
}

}  // namespace forgeyard
