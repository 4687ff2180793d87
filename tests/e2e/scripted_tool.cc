// A tool that does what its arguments say, in their order; it stands in where a test needs to know when a
// tool runs or wants one that misbehaves.
//   print TEXT        writes a line to standard output
//   text TEXT         writes without a line end
//   log FILE TEXT     adds a line to a file
//   touch FILE        makes or empties a file
//   pid FILE          writes its process id and that of its parent
//   wait FILE         waits until the file exists
//   hang              waits for ever
//   deaf              ignores the polite signal to end
//   daemon FILE       leaves behind a process with a session of its own that keeps all handles and writes its
//                     process id to FILE
//   exit N            ends with that code
//   crash             ends by a signal
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void append(const std::string& file, const std::string& text, int flags) {
  const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, 0666);
  if (fd < 0 || ::write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    std::perror(file.c_str());
    std::exit(99);
  }
  ::close(fd);
}

// Appears whole, so that a reader that sees the file can read it.
void place(const std::string& file, const std::string& text) {
  append(file + ".new", text, O_TRUNC);
  if (std::rename((file + ".new").c_str(), file.c_str()) != 0) std::exit(99);
}

void waitFor(const std::string& file) {
  while (::access(file.c_str(), F_OK) != 0) ::poll(nullptr, 0, 2);
}

void leaveDaemon(const std::string& file) {
  if (::fork() != 0) return waitFor(file);
  ::setsid();
  if (::fork() != 0) ::_exit(0);
  place(file, std::to_string(::getpid()) + "\n");
  for (;;) ::pause();
}

class Script {
 public:
  Script(int argc, char** argv) : next_(argv + 1), end_(argv + argc) {}

  void run() {
    while (next_ != end_) step(take());
  }

 private:
  std::string take() {
    if (next_ == end_) std::exit(98);
    return *next_++;
  }

  void step(const std::string& word) {
    if (word == "print") return text(take() + "\n");
    if (word == "text") return text(take());
    if (word == "log") return log();
    if (word == "touch") return append(take(), "", O_TRUNC);
    if (word == "pid")
      return place(take(), std::to_string(::getpid()) + " " + std::to_string(::getppid()) + "\n");
    if (word == "wait") return waitFor(take());
    if (word == "daemon") return leaveDaemon(take());
    end(word);
  }

  // The words behind which there is nothing more, but for "deaf".
  void end(const std::string& word) {
    if (word == "deaf") {
      ::signal(SIGTERM, SIG_IGN);
    } else if (word == "exit") {
      std::exit(std::atoi(take().c_str()));
    } else if (word == "crash") {
      ::raise(SIGKILL);
    } else if (word == "hang") {
      for (;;) ::pause();
    } else {
      std::exit(97);
    }
  }

  static void text(const std::string& line) {
    std::fputs(line.c_str(), stdout);
    std::fflush(stdout);
  }

  void log() {
    const std::string file = take();
    append(file, take() + "\n", O_APPEND);
  }

  char** next_;
  char** end_;
};

}  // namespace

int main(int argc, char** argv) {
  Script(argc, argv).run();
  return 0;
}
