#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>

namespace forgeyard {

// A copy of the test's process that runs a body and ends. It can tell its parent that it has come somewhere.
// Collected at the latest when this goes.
class Child {
 public:
  // The body ends the child with 0 by returning, with 100 by an exception. Children report by announce().
  template <class Body>
  explicit Child(Body&& body) {
    if (::pipe(pipe_) != 0) std::terminate();
    pid_ = ::fork();
    if (pid_ == 0) {
      int code = 0;
      try {
        if constexpr (requires { body(*this); }) {
          body(*this);
        } else {
          body();
        }
      } catch (const std::exception&) {
        code = 100;
      }
      ::_exit(code);
    }
    ::close(pipe_[1]);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (pid_ > 0) kill();
    ::close(pipe_[0]);
  }

  // In the child: wakes awaitAnnouncement().
  void announce() { static_cast<void>(::write(pipe_[1], "!", 1) == 1); }
  // False if the child ended without a word.
  bool awaitAnnouncement() {
    char byte = 0;
    return ::read(pipe_[0], &byte, 1) == 1;
  }
  void kill() {
    ::kill(pid_, SIGKILL);
    wait();
  }
  // The exit code; 1000 and more for a signal.
  int wait() {
    int status = 0;
    ::waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
  }

 private:
  int pipe_[2] = {-1, -1};
  pid_t pid_ = -1;
};

}  // namespace forgeyard
