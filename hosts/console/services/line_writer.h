#pragma once

#include <poll.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "hosts/console/base/exit_code.h"
#include "platform/threads/waitable.h"

namespace forgeyard::console {

// Writes lines to a descriptor through a buffer of its own. Lines leave when the buffer is full, when flush()
// is called, and in the destructor; who adds lines asks dueIn() how long they may wait. One thread.
//
// On a terminal a footer may stay below all lines: it is taken away for them and put back behind them, in one
// piece with them.
//
// When the descriptor can't be written any more, what is left is dropped, and so is every later line: state()
// says why. A stuck reader doesn't hold the program up against the user's wish: while `interrupt` is
// signalled, output that would have to wait for more than half a second is dropped (State::Abandoned).
class LineWriter {
 public:
  enum class State { Open, Closed, Abandoned, Failed };

  // Borrows the descriptor.
  explicit LineWriter(int descriptor);
  LineWriter(const LineWriter&) = delete;
  LineWriter& operator=(const LineWriter&) = delete;
  ~LineWriter();

  // What a line becomes on its way out, until the next call; null for the line itself.
  using Encoder = std::string (*)(std::string_view line);
  void setEncoder(Encoder encoder) { encoder_ = encoder; }

  // Appends the text and a line feed.
  void line(std::u16string_view text);
  void line(std::string_view text);
  // Appends a text of whole lines.
  void lines(std::string_view text);
  // Appends bytes as they stand.
  void raw(std::string_view bytes);
  void flush();

  // The text below the lines, until the next call; empty for none. It must fit on a line of the terminal. It
  // is shown with the next flush.
  void setFooter(std::string text);
  // Takes the footer away, until the next flush, so that others can write to the terminal.
  void hideFooter();
  // Others have written below the footer: where it stands it is theirs. With the next flush it is shown anew.
  void abandonFooter();

  // How long the lines that wait may go on waiting: zero on a terminal; nothing waits: negative, for ever.
  std::chrono::milliseconds dueIn() const;

  // Borrowed until the next call; null for none.
  void setInterrupt(const Waitable* interrupt) { interrupt_ = interrupt; }

  State state() const noexcept { return state_; }
  // Of State::Failed: errno.
  int error() const noexcept { return error_; }

 private:
  using Clock = std::chrono::steady_clock;

  char* reserve(std::size_t bytes);
  void append(std::string_view line);
  void put(std::string_view bytes);
  void writeOut();
  void eraseFooter();
  void showFooter();
  bool footerIsDue() const { return footerWaits_ && state_ == State::Open; }
  void finishLine(char* end);
  void finish(char* end);
  bool waitUntilWritable();
  bool takesMoreInTime(pollfd& output);
  void drop(State state, int error = 0);

  int descriptor_;
  Encoder encoder_ = nullptr;
  std::string footer_;
  bool footerShown_ = false;  // stands behind what has been written
  bool footerWaits_ = false;  // has to be written with the next flush
  bool terminal_;
  bool mayBlock_;  // a pipe, socket or terminal
  std::size_t capacity_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  Clock::time_point oldest_;  // when the first waiting line came
  Clock::time_point newest_;
  const Waitable* interrupt_ = nullptr;
  std::optional<Clock::time_point> giveUp_;  // on a reader, in this flush: the user wants to stop
  State state_ = State::Open;
  int error_ = 0;
};

// Sends off what the writer still holds. The exit code, or another one if the output could not take all of
// it.
ExitCode finishOutput(LineWriter& output, ExitCode code);

}  // namespace forgeyard::console
