#include "tests/e2e/running_program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace forgeyard::e2e {

namespace {

using Clock = std::chrono::steady_clock;
// Far beyond what any step of a test takes, also on a machine that is busy with others.
constexpr std::chrono::seconds kPatience{60};

struct PipeEnds {
  int read = -1;
  int write = -1;
};

PipeEnds makePipe() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  return {ends[0], ends[1]};
}

void limitFiles(long bytes) {
  const auto limit = static_cast<rlim_t>(bytes);
  const rlimit both{limit, limit};
  ::setrlimit(RLIMIT_FSIZE, &both);
  // A write beyond the limit then fails, as it does on a full disk, and kills nobody.
  ::signal(SIGXFSZ, SIG_IGN);
}

[[noreturn]] void becomeProgram(const Start& start, int input, int output, int errors) {
  ::setpgid(0, 0);
  ::dup2(input >= 0 ? input : ::open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(errors, STDERR_FILENO);
  if (!start.directory.empty() && ::chdir(start.directory.c_str()) != 0) ::_exit(126);
  // The shell's word for the directory is another process's by now.
  ::unsetenv("PWD");
  for (const std::string& entry : start.environment) {
    const std::size_t sign = entry.find('=');
    ::setenv(entry.substr(0, sign).c_str(), entry.substr(sign + 1).c_str(), 1);
  }
  if (start.fileLimit) limitFiles(*start.fileLimit);
  std::vector<char*> words;
  for (const std::string& word : start.command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  ::execvp(words[0], words.data());
  ::_exit(127);
}

}  // namespace

Lines Outcome::lines() const {
  Lines result;
  std::size_t begin = 0;
  while (begin < output.size()) {
    std::size_t end = output.find('\n', begin);
    if (end == output.npos) end = output.size();
    result.push_back(output.substr(begin, end - begin));
    begin = end + 1;
  }
  return result;
}

RunningProgram::RunningProgram(const Start& start) {
  const PipeEnds output = makePipe();
  const PipeEnds errors = makePipe();
  const PipeEnds input = start.withInput ? makePipe() : PipeEnds();
  id_ = ::fork();
  if (id_ < 0) throw std::runtime_error("no process");
  if (id_ == 0) becomeProgram(start, input.read, output.write, errors.write);
  ::setpgid(id_, id_);
  ::close(output.write);
  ::close(errors.write);
  if (start.withInput) ::close(input.read);
  input_ = input.write;
  output_ = output.read;
  errors_ = errors.read;
}

RunningProgram::~RunningProgram() {
  if (!collected_) {
    ::kill(-id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
  closeInput();
  if (output_ >= 0) ::close(output_);
  if (errors_ >= 0) ::close(errors_);
}

bool RunningProgram::readFrom(int& fd, std::string& text) {
  char bytes[4096];
  const ssize_t got = ::read(fd, bytes, sizeof bytes);
  if (got < 0 && errno == EINTR) return true;
  if (got > 0) {
    text.append(bytes, static_cast<std::size_t>(got));
    return true;
  }
  ::close(fd);
  fd = -1;
  return false;
}

bool RunningProgram::readMore(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  pollfd both[2] = {{output_, POLLIN, 0}, {errors_, POLLIN, 0}};
  if (left <= 0 || ::poll(both, 2, static_cast<int>(left)) == 0) return false;
  if (both[0].revents != 0) readFrom(output_, outcome_.output);
  if (both[1].revents != 0) readFrom(errors_, outcome_.errors);
  return true;
}

bool RunningProgram::waitForOutput(std::string_view text) {
  const auto deadline = Clock::now() + kPatience;
  while (outcome_.output.find(text) == std::string::npos) {
    if (output_ < 0 || !readMore(deadline)) return false;
  }
  return true;
}

bool RunningProgram::readSome() {
  return output_ >= 0 && readMore(Clock::now() + kPatience);
}

bool RunningProgram::write(std::string_view text) const {
  // A reader that has gone is what some tests are about.
  ::signal(SIGPIPE, SIG_IGN);
  while (!text.empty()) {
    const ssize_t written = ::write(input_, text.data(), text.size());
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

void RunningProgram::closeInput() {
  if (input_ >= 0) ::close(input_);
  input_ = -1;
}

void RunningProgram::signal(int number) const {
  ::kill(id_, number);
}
void RunningProgram::interrupt() const {
  ::kill(-id_, SIGINT);
}

Outcome RunningProgram::finish() {
  const auto deadline = Clock::now() + kPatience;
  while (output_ >= 0 || errors_ >= 0) {
    if (!readMore(deadline)) {
      outcome_.errors += "\n(the test lost its patience)\n";
      ::kill(-id_, SIGKILL);
      break;
    }
  }
  int status = 0;
  ::waitpid(id_, &status, 0);
  collected_ = true;
  outcome_.exitCode = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return outcome_;
}

}  // namespace forgeyard::e2e
