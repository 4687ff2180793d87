#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard::e2e {

using Lines = std::vector<std::string>;

// How a program ended and what it wrote.
struct Outcome {
  int exitCode = -1;  // 128 + n after signal n
  std::string output;
  std::string errors;

  Lines lines() const;
};

struct Start {
  Lines command;                  // the program's file and its arguments
  std::string directory;          // where it runs
  Lines environment;              // NAME=VALUE; replaces what this process has under that name
  std::optional<long> fileLimit;  // no file of it grows beyond so many bytes
  bool withInput = false;         // standard input is a pipe for write(), not empty
};

// A program at work in a process group of its own. One that is still running at the
// end of the object is killed. For one thread.
class RunningProgram {
 public:
  explicit RunningProgram(const Start& start);
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;
  ~RunningProgram();

  pid_t id() const { return id_; }
  // Reads until the text stands in its standard output; false if that ends or half a minute passes before.
  bool waitForOutput(std::string_view text);
  // Waits for some more of its output; false if that has ended or nothing comes for a long time.
  bool readSome();
  // All of standard output that has been read.
  const std::string& seen() const { return outcome_.output; }
  // False when nobody reads it any more.
  bool write(std::string_view text) const;
  void closeInput();
  void signal(int number) const;
  // As Ctrl-C at a terminal: reaches its whole process group.
  void interrupt() const;
  // Reads to the end and waits.
  Outcome finish();

 private:
  // False when the time is over.
  bool readMore(std::chrono::steady_clock::time_point deadline);
  static bool readFrom(int& fd, std::string& text);

  pid_t id_ = -1;
  int input_ = -1;
  int output_ = -1;
  int errors_ = -1;
  bool collected_ = false;
  Outcome outcome_;
};

}  // namespace forgeyard::e2e
