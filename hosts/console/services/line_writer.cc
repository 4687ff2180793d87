#include "hosts/console/services/line_writer.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "hosts/console/base/report.h"
#include "platform/text/narrow.h"

namespace forgeyard::console {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t kCapacity = std::size_t{256} << 10;
// A pipe that polls as writable takes this much without blocking.
constexpr std::size_t kSafeChunk = 4096;
// Lines of a tool that writes in spurts leave together; none waits for longer than kLongest.
constexpr milliseconds kIdle{2};
constexpr milliseconds kLongest{50};
// What a reader that is only slow gets to take the rest when the user wants to stop.
constexpr milliseconds kReaderGrace{500};

bool canBlock(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode);
}

// The time of the last tick: a hundredth of a second is near enough, and this costs next to nothing.
std::chrono::steady_clock::time_point coarseNow() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return std::chrono::steady_clock::time_point(std::chrono::seconds(now.tv_sec) +
                                               std::chrono::nanoseconds(now.tv_nsec));
}

// Blocks of a fixed size compile to a few vector instructions.
constexpr std::size_t kBlock = 16;

// Writes the low byte of each unit; false, with `out` filled in vain, when there is more than ASCII.
bool narrowAscii(std::u16string_view text, char* out) {
  std::array<char16_t, kBlock> seen{};
  std::size_t at = 0;
  for (; at + kBlock <= text.size(); at += kBlock) {
    for (std::size_t i = 0; i < kBlock; ++i) seen[i] = static_cast<char16_t>(seen[i] | text[at + i]);
    std::array<char, kBlock> narrow;
    for (std::size_t i = 0; i < kBlock; ++i) narrow[i] = static_cast<char>(text[at + i]);
    std::memcpy(out + at, narrow.data(), kBlock);
  }
  char16_t all = 0;
  for (; at < text.size(); ++at) {
    all = static_cast<char16_t>(all | text[at]);
    out[at] = static_cast<char>(text[at]);
  }
  for (const char16_t units : seen) all = static_cast<char16_t>(all | units);
  return all < 0x80;
}

}  // namespace

LineWriter::LineWriter(int descriptor)
    : descriptor_(descriptor),
      terminal_(::isatty(descriptor) == 1),
      mayBlock_(canBlock(descriptor)),
      capacity_(kCapacity),
      buffer_(new char[kCapacity]) {}

LineWriter::~LineWriter() {
  flush();
}

// Room for that many bytes behind what waits.
char* LineWriter::reserve(std::size_t bytes) {
  if (capacity_ - used_ < bytes) writeOut();
  if (capacity_ < bytes) {
    buffer_.reset(new char[bytes]);
    capacity_ = bytes;
  }
  return buffer_.get() + used_;
}

void LineWriter::finishLine(char* end) {
  *end++ = '\n';
  finish(end);
}

void LineWriter::finish(char* end) {
  const Clock::time_point now = coarseNow();
  if (used_ == 0) oldest_ = now;
  newest_ = now;
  used_ = static_cast<std::size_t>(end - buffer_.get());
  if (now - oldest_ >= kLongest) writeOut();
}

void LineWriter::line(std::u16string_view text) {
  if (state_ != State::Open) return;
  if (encoder_) return line(narrowFromWide(text));
  if (footerShown_) eraseFooter();
  char* out = reserve(text.size() + 1);
  if (!narrowAscii(text, out)) return line(narrowFromWide(text));
  finishLine(out + text.size());
}

void LineWriter::line(std::string_view text) {
  if (state_ != State::Open) return;
  append(encoder_ ? std::string_view(encoder_(text)) : text);
}

void LineWriter::lines(std::string_view text) {
  if (!encoder_) return raw(text);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    line(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

void LineWriter::append(std::string_view text) {
  if (footerShown_) eraseFooter();
  char* out = reserve(text.size() + 1);
  if (!text.empty()) std::memcpy(out, text.data(), text.size());
  finishLine(out + text.size());
}

void LineWriter::raw(std::string_view bytes) {
  if (state_ != State::Open || bytes.empty()) return;
  if (footerShown_) eraseFooter();
  put(bytes);
}

void LineWriter::put(std::string_view bytes) {
  char* out = reserve(bytes.size());
  std::memcpy(out, bytes.data(), bytes.size());
  finish(out + bytes.size());
}

void LineWriter::setFooter(std::string text) {
  if (text == footer_) return;
  footer_ = std::move(text);
  if (footer_.empty()) {
    if (footerShown_) eraseFooter();
    footerWaits_ = false;
  } else {
    footerWaits_ = true;
  }
}

void LineWriter::hideFooter() {
  if (!footerShown_) return;
  eraseFooter();
  writeOut();
}

void LineWriter::abandonFooter() {
  if (!footerShown_) return;
  footerShown_ = false;
  footerWaits_ = true;
}

void LineWriter::eraseFooter() {
  footerShown_ = false;
  footerWaits_ = !footer_.empty();
  if (state_ == State::Open) put("\r\x1b[K");
}

// Over the one before, of which what is longer is cut off: nothing flickers.
void LineWriter::showFooter() {
  footerShown_ = true;
  footerWaits_ = false;
  put("\r" + footer_ + "\x1b[K");
}

std::chrono::milliseconds LineWriter::dueIn() const {
  if (footerIsDue()) return milliseconds::zero();
  if (used_ == 0) return milliseconds(-1);
  if (terminal_) return milliseconds::zero();
  const Clock::time_point due = std::min(newest_ + kIdle, oldest_ + kLongest);
  const auto left = std::chrono::ceil<milliseconds>(due - coarseNow());
  return std::clamp(left, milliseconds(1), kIdle);
}

void LineWriter::flush() {
  if (footerIsDue()) showFooter();
  writeOut();
}

void LineWriter::writeOut() {
  std::string_view rest(buffer_.get(), std::exchange(used_, 0));
  giveUp_ = std::nullopt;
  while (!rest.empty() && state_ == State::Open) {
    if (mayBlock_ && !waitUntilWritable()) return;
    const std::size_t chunk = mayBlock_ ? std::min(rest.size(), kSafeChunk) : rest.size();
    const ssize_t written = ::write(descriptor_, rest.data(), chunk);
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EPIPE) {
      drop(State::Closed);
    } else if (errno != EINTR && errno != EAGAIN) {
      drop(State::Failed, errno);
    }
  }
}

// False when the output was given up instead.
bool LineWriter::waitUntilWritable() {
  for (;;) {
    pollfd entries[] = {{descriptor_, POLLOUT, 0}, {interrupt_ ? interrupt_->descriptor() : -1, POLLIN, 0}};
    if (::poll(entries, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return true;  // the write tells what is wrong
    }
    if (entries[0].revents || takesMoreInTime(entries[0])) return true;
    drop(State::Abandoned);
    return false;
  }
}

// The user wants to stop, and nothing can be written at this moment.
bool LineWriter::takesMoreInTime(pollfd& output) {
  if (!giveUp_) giveUp_ = Clock::now() + kReaderGrace;
  const auto left = std::chrono::ceil<milliseconds>(*giveUp_ - Clock::now());
  return left > milliseconds::zero() && ::poll(&output, 1, static_cast<int>(left.count())) > 0;
}

void LineWriter::drop(State state, int error) {
  state_ = state;
  error_ = error;
  used_ = 0;
}

ExitCode finishOutput(LineWriter& output, ExitCode code) {
  output.flush();
  switch (output.state()) {
    case LineWriter::State::Closed:
      return ExitCode::OutputClosed;
    case LineWriter::State::Failed:
      complain(std::string("Standard output can't be written: ") + std::strerror(output.error()) + ".");
      return ExitCode::Failure;
    default:
      return code;
  }
}

}  // namespace forgeyard::console
