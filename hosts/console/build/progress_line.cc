#include "hosts/console/build/progress_line.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "hosts/console/services/terminal.h"
#include "hosts/console/session/session.h"

namespace forgeyard::console {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds kTick{1000};
constexpr std::array kChanges{SIGWINCH, SIGCONT};

std::string spelled(seconds time) {
  const auto all = static_cast<unsigned long>(time.count());
  std::array<char, 40> text{};
  if (all >= 3600) {
    std::snprintf(text.data(), text.size(), "%lu:%02lu:%02lu", all / 3600, all / 60 % 60, all % 60);
  } else {
    std::snprintf(text.data(), text.size(), "%lu:%02lu", all / 60, all % 60);
  }
  return text.data();
}

}  // namespace

ProgressLine::ProgressLine(Session& session) : session_(session), changes_(kChanges) {
  startTimer();
  session_.loop().watch(&*timer_, [this] {
    startTimer();
    show();
  });
  session_.loop().watch(&changes_, [this] {
    takeSignals();
    // Until something was shown there is nothing to show anew.
    if (!run_.empty()) show();
  });
}

ProgressLine::~ProgressLine() {
  session_.loop().unwatch(&changes_);
  session_.loop().unwatch(&*timer_);
  session_.output().setFooter({});
}

// To the next full second.
void ProgressLine::startTimer() {
  const auto elapsed = std::chrono::duration_cast<milliseconds>(Clock::now() - begin_);
  timer_.emplace(kTick - elapsed % kTick);
}

void ProgressLine::componentStarted(std::string component) {
  component_ = std::move(component);
  run_.clear();
  file_.clear();
}

// What follows mostly follows at once: the line stands until then, or until the next tick.
void ProgressLine::componentEnded() {
  component_.clear();
  run_.clear();
  file_.clear();
}

void ProgressLine::toolStarted(std::int32_t number, std::int32_t count, const std::string& file) {
  run_ = "[" + std::to_string(number);
  if (count != 0) run_ += "/" + std::to_string(std::max(count, number));
  run_ += "] ";
  file_ = file;
  show();
}

// Who was stopped has had the shell's words written below, and may go on in the background.
void ProgressLine::takeSignals() {
  while (const std::optional<int> signal = changes_.take()) {
    if (*signal == SIGCONT) session_.output().abandonFooter();
  }
}

void ProgressLine::show() {
  takeSignals();
  // A job in the background keeps to whole lines.
  session_.output().setFooter(isForeground() ? text(terminalWidth() - 1) : "");
}

// Of a name that is too long the end is shown.
std::string ProgressLine::text(std::size_t columns) const {
  const std::string elapsed = "  " + spelled(std::chrono::duration_cast<seconds>(Clock::now() - begin_));
  if (elapsed.size() >= columns) return lastColumns(elapsed, columns);
  const std::size_t room = columns - elapsed.size();
  if (component_.empty()) return lastColumns("waiting for its turn", room) + elapsed;
  const std::string head = printable(run_ + component_ + (file_.empty() ? "" : ": "));
  const std::string file = printable(file_);
  const std::size_t taken = columnsOf(head);
  if (taken < room) return head + lastColumns(file, room - taken) + elapsed;
  return lastColumns(head + file, room) + elapsed;
}

}  // namespace forgeyard::console
