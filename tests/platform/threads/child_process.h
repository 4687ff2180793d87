#pragma once

#include <signal.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/threads/pipe.h"
#include "platform/threads/process.h"
#include "tests/support/places.h"

namespace forgeyard {

// The test's own child program at work, with its output to read. Killed and collected at the end.
class ChildProcess {
 public:
  explicit ChildProcess(std::vector<std::string> arguments, ProcessOptions options = {}) {
    options.program = places::programs() + "/platform_os_child";
    options.arguments = std::move(arguments);
    options.arguments.insert(options.arguments.begin(), "child");
    options.standardOutput = output_.writeEnd.get();
    options.standardError = errors_.writeEnd.get();
    ProcessStartError error;
    process_ = Process::start(options, error);
    if (!process_) throw std::runtime_error(error.message);
    output_.writeEnd.reset();
    errors_.writeEnd.reset();
  }
  ~ChildProcess() {
    if (process_->exitCode()) return;
    kill();
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  Process& process() { return *process_; }

  // The next line of its output without the line feed; empty at the end.
  std::string line() {
    std::string text;
    char byte = 0;
    while (readOrCancel(output_.readEnd, never_, {&byte, 1}).end == ReadEnd::Data && byte != '\n')
      text += byte;
    return text;
  }
  std::string output() { return rest(output_); }
  std::string errors() { return rest(errors_); }

  int wait() {
    waitAny({process_.get()});
    return process_->exitCode().value();
  }
  void kill() {
    process_->kill(SIGKILL);
    wait();
  }

 private:
  std::string rest(const Pipe& pipe) {
    std::string text;
    char bytes[512];
    for (;;) {
      const ReadResult read = readOrCancel(pipe.readEnd, never_, bytes);
      if (read.end != ReadEnd::Data) return text;
      text.append(bytes, read.bytes);
    }
  }

  Pipe output_;
  Pipe errors_;
  Event never_;
  std::unique_ptr<Process> process_;
};

}  // namespace forgeyard
