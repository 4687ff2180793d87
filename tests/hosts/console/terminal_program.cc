#include "tests/hosts/console/terminal_program.h"

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <utility>
#include <vector>

namespace forgeyard::console {

namespace {

constexpr int kPatience = 60000;  // milliseconds without a sign of life

[[noreturn]] void becomeProgram(const e2e::Start& start) {
  if (::chdir(start.directory.c_str()) != 0) ::_exit(126);
  ::unsetenv("PWD");
  for (const std::string& entry : start.environment) ::putenv(const_cast<char*>(entry.c_str()));
  std::vector<char*> words;
  for (const std::string& word : start.command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  ::execv(words[0], words.data());
  ::_exit(127);
}

}  // namespace

TerminalProgram::TerminalProgram(const e2e::Start& start, unsigned short columns) {
  const winsize size{24, columns, 0, 0};
  id_ = ::forkpty(&terminal_, nullptr, nullptr, &size);
  if (id_ < 0) throw std::runtime_error("no terminal");
  if (id_ == 0) becomeProgram(start);
}

TerminalProgram::~TerminalProgram() {
  if (id_ > 0) {
    ::kill(-id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
  ::close(terminal_);
}

// False when the program has let go of the terminal, or shows nothing for too long.
bool TerminalProgram::readMore() {
  pollfd entry{terminal_, POLLIN, 0};
  if (::poll(&entry, 1, kPatience) != 1) return false;
  char bytes[4096];
  const ssize_t got = ::read(terminal_, bytes, sizeof bytes);
  if (got > 0) text_.append(bytes, static_cast<std::size_t>(got));
  return got > 0;
}

bool TerminalProgram::waitFor(std::string_view text) {
  // What ticks is never silent.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPatience);
  while (shown().find(text) == std::string::npos) {
    if (std::chrono::steady_clock::now() > deadline || !readMore()) return false;
  }
  return true;
}

void TerminalProgram::type(std::string_view keys) const {
  if (::write(terminal_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
    throw std::runtime_error("the terminal takes no keys");
}

int TerminalProgram::finish() {
  while (readMore()) {
  }
  int status = 0;
  ::waitpid(std::exchange(id_, -1), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void TerminalProgram::resize(unsigned short columns) const {
  const winsize size{24, columns, 0, 0};
  if (::ioctl(terminal_, TIOCSWINSZ, &size) != 0) throw std::runtime_error("the terminal keeps its size");
}

std::string TerminalProgram::shown() const {
  std::string screen;
  std::size_t row = 0;     // where the last line begins
  std::size_t cursor = 0;  // in bytes
  for (std::size_t at = 0; at < text_.size(); ++at) {
    const char c = text_[at];
    if (c == '\r') {
      cursor = row;
    } else if (c == '\n') {
      screen += c;
      row = cursor = screen.size();
    } else if (c == '\x1b') {
      at = std::min(text_.find_first_of("mK", at), text_.size() - 1);
      if (text_[at] == 'K') screen.resize(cursor);
    } else {
      screen.resize(std::max(screen.size(), cursor + 1));
      screen[cursor++] = c;
    }
  }
  return screen;
}

}  // namespace forgeyard::console
