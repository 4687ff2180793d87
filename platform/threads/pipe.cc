#include "platform/threads/pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "platform/files/os_error.h"
#include "platform/threads/poll.h"

namespace forgeyard {
namespace {

// A tool that writes faster than its lines are shown is not slowed down before this much lies in the pipe.
// The system may refuse it to a user with many pipes; the default size does as well then.
constexpr int pipeBytes = 256 * 1024;

class Borrowed : public Waitable {
 public:
  explicit Borrowed(const Descriptor& fd) : fd_(fd.get()) {}
  int descriptor() const noexcept override { return fd_; }

 private:
  int fd_;
};

}  // namespace

Pipe::Pipe() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) detail::throwErrno("making a pipe");
  readEnd.reset(ends[0]);
  writeEnd.reset(ends[1]);
  static_cast<void>(::fcntl(ends[1], F_SETPIPE_SZ, pipeBytes));
}

ReadResult readOrCancel(const Descriptor& pipe, const Event& cancel, std::span<char> buffer) {
  const Borrowed source(pipe);
  for (;;) {
    if (waitAny({&cancel, &source}) == 0) return {ReadEnd::Cancelled};
    const ssize_t count = ::read(pipe.get(), buffer.data(), buffer.size());
    if (count > 0) return {ReadEnd::Data, static_cast<std::size_t>(count)};
    if (count == 0) return {ReadEnd::EndOfFile};
    if (errno != EINTR && errno != EAGAIN) return {ReadEnd::Failed, 0, errno};
  }
}

}  // namespace forgeyard
