#pragma once

#include <signal.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/threads/event.h"
#include "platform/threads/pipe.h"
#include "platform/threads/process.h"
#include "tests/platform/support/scratch.h"
#include "tests/support/places.h"

namespace forgeyard {

inline const std::string SPAWNER = places::programs() + "/TideSpawn.exe";

inline ProcessOptions optionsFor(const std::vector<std::string>& arguments) {
  ProcessOptions options;
  options.program = arguments.front();
  options.arguments = arguments;
  return options;
}

// A spawner that reads its command from standard input.
inline ProcessOptions optionsForInput(const std::string& command, const std::string& spawner = SPAWNER) {
  ProcessOptions options = optionsFor({spawner, "--stdin"});
  options.input = command;
  return options;
}

// The spawner at work as a host starts it: the command in one argument, both outputs in one pipe.
class Spawned {
 public:
  explicit Spawned(const std::string& command, const std::string& spawner = SPAWNER)
      : Spawned(std::vector<std::string>{spawner, command}) {}
  explicit Spawned(const std::vector<std::string>& arguments) : Spawned(optionsFor(arguments)) {}
  explicit Spawned(ProcessOptions options) {
    options.standardOutput = pipe_.writeEnd.get();
    options.standardError = pipe_.writeEnd.get();
    ProcessStartError error;
    process_ = Process::start(options, error);
    if (!process_) throw std::runtime_error(error.message);
    pipe_.writeEnd.reset();
  }
  ~Spawned() {
    if (process_->kill(SIGKILL)) wait();
  }
  Spawned(const Spawned&) = delete;
  Spawned& operator=(const Spawned&) = delete;

  Process& process() { return *process_; }

  // The next line of output; empty at the end.
  std::string line() {
    std::string text;
    char byte = 0;
    while (readOrCancel(pipe_.readEnd, never_, {&byte, 1}).end == ReadEnd::Data && byte != '\n') text += byte;
    return text;
  }
  // All output up to the point where nobody holds the pipe any more.
  std::string output() {
    std::string text;
    std::array<char, 512> bytes;
    for (;;) {
      const ReadResult read = readOrCancel(pipe_.readEnd, never_, bytes);
      if (read.end != ReadEnd::Data) return text;
      text.append(bytes.data(), read.bytes);
    }
  }
  int wait() {
    waitAny({process_.get()});
    return process_->exitCode().value();
  }

 private:
  Pipe pipe_;
  Event never_;
  std::unique_ptr<Process> process_;
};

struct Result {
  int exitCode = -1;
  std::string output;
  friend bool operator==(const Result&, const Result&) = default;
};
inline void PrintTo(const Result& result, std::ostream* out) {
  *out << "exit " << result.exitCode << ", output \"" << result.output << '"';
}

inline Result resultOf(Spawned& run) {
  Result result;
  result.output = run.output();
  result.exitCode = run.wait();
  return result;
}

inline Result spawn(const ProcessOptions& options) {
  Spawned run(options);
  return resultOf(run);
}
inline Result spawn(const std::string& command, const std::string& spawner = SPAWNER) {
  Spawned run(command, spawner);
  return resultOf(run);
}

}  // namespace forgeyard
