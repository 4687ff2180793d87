#include "hosts/console/doctor/program_version.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <array>

#include "platform/threads/pipe.h"
#include "platform/threads/process.h"

namespace forgeyard::console {

namespace {

constexpr std::chrono::seconds kPatience{5};

// What is in the pipe now: what the program has started may hold the other end for ever.
std::string firstLineIn(const Descriptor& pipe) {
  std::array<char, 4096> text{};
  static_cast<void>(::fcntl(pipe.get(), F_SETFL, O_NONBLOCK));
  const ssize_t size = ::read(pipe.get(), text.data(), text.size());
  if (size <= 0) return "";
  std::string line(text.data(), static_cast<std::size_t>(size));
  return line.substr(0, line.find_first_of("\r\n"));
}

}  // namespace

std::string programVersion(const std::string& path) {
  Pipe pipe;
  ProcessOptions options;
  options.program = path;
  options.arguments = {path.substr(path.rfind('/') + 1), "--version"};
  options.standardOutput = pipe.writeEnd.get();
  ProcessStartError error;
  const auto process = Process::start(options, error);
  pipe.writeEnd.reset();
  if (!process) return "";
  if (!waitAny({process.get()}, kPatience)) {
    process->kill(SIGKILL);
    return "";
  }
  return process->exitCode() == 0 ? firstLineIn(pipe.readEnd) : "";
}

}  // namespace forgeyard::console
