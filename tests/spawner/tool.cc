// What the tests let the spawner run: one small job for each first argument.

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

using Arguments = std::vector<std::string>;

void say(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

[[noreturn]] void hang() {
  for (;;) ::pause();
}

int print(const Arguments& arguments) {
  for (const std::string& argument : arguments) say("[" + argument + "]");
  return 0;
}

int countArguments(const Arguments& arguments) {
  std::size_t bytes = 0;
  for (const std::string& argument : arguments) bytes += argument.size();
  say(std::to_string(arguments.size()) + " arguments, " + std::to_string(bytes) + " bytes");
  return 0;
}

// A GNU tool that was called with a response file of ours: one argument in each line, a backslash before
// whatever is special.
int countResponseFile(const std::string& name) {
  std::ifstream file(name);
  std::size_t words = 0;
  std::size_t bytes = 0;
  for (char c; file.get(c);) {
    if (c == '\n') {
      ++words;
      continue;
    }
    if (c == '\\') file.get(c);
    ++bytes;
  }
  say("1 arguments, " + std::to_string(words) + " in the response file, " + std::to_string(bytes) + " bytes");
  return 0;
}

int exitWith(const Arguments& arguments) {
  return std::stoi(arguments.at(0));
}

int dieOf(const Arguments& arguments) {
  const int signal = std::stoi(arguments.at(0));
  ::signal(signal, SIG_DFL);  // a sanitizer would have a report to make of it
  ::raise(signal);
  return 99;
}

int touch(const Arguments& arguments) {
  std::ofstream(arguments.at(0)) << "touched";
  return 0;
}

int hangAround(const Arguments&) {
  say("ready");
  hang();
}

int hangStopped(const Arguments&) {
  say("ready");
  ::raise(SIGSTOP);
  hang();
}

int ignoreTermination(const Arguments&) {
  ::signal(SIGTERM, SIG_IGN);
  say("ready");
  hang();
}

// Ends when asked to, in its own way.
int endPolitely(const Arguments& arguments) {
  static int code = 0;
  code = std::stoi(arguments.at(0));
  ::signal(SIGTERM, [](int) { ::_exit(code); });
  say("ready");
  hang();
}

// Somebody who has left the group and the session and ignores SIGTERM, and keeps the output open.
void leaveDaemon() {
  int told[2];
  if (::pipe(told) != 0) ::_exit(98);
  if (::fork() == 0) {
    ::setsid();
    if (::fork() != 0) ::_exit(0);
    ::signal(SIGTERM, SIG_IGN);
    if (::write(told[1], "x", 1) != 1) ::_exit(98);
    hang();
  }
  char byte = 0;
  if (::read(told[0], &byte, 1) != 1) ::_exit(98);
  while (::waitpid(-1, nullptr, WNOHANG) > 0) {
  }
}

int leaveDaemonBehind(const Arguments& arguments) {
  leaveDaemon();
  if (::fork() == 0) hang();  // and one in the group
  return std::stoi(arguments.at(0));
}

// Leaves children without a parent that end when it does.
int leaveOrphans(const Arguments& arguments) {
  for (int i = 0; i < 20; ++i) {
    if (::fork() != 0) continue;
    if (::fork() != 0) ::_exit(0);
    ::_exit(0);
  }
  return std::stoi(arguments.at(0));
}

int hangWithDaemon(const Arguments&) {
  leaveDaemon();
  say("ready");
  hang();
}

// Leaves when somebody opens the FIFO for writing.
int passGate(const Arguments& arguments) {
  say("ready");
  return ::open(arguments.at(0).c_str(), O_RDONLY) >= 0 ? 7 : 98;
}

// Starts a spawner as a host would, and hangs.
int host(const Arguments& arguments) {
  if (::fork() == 0) {
    ::execl(arguments.at(0).c_str(), arguments.at(0).c_str(), arguments.at(1).c_str(), nullptr);
    ::_exit(98);
  }
  hang();
}

std::map<std::string, unsigned long> signalSets() {
  std::map<std::string, unsigned long> sets;
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("SigBlk")) sets["blocked"] = std::stoul(line.substr(8), nullptr, 16);
    if (line.starts_with("SigIgn")) sets["ignored"] = std::stoul(line.substr(8), nullptr, 16);
  }
  return sets;
}

// How a tool finds itself: input, group, signals, descriptors.
int state(const Arguments&) {
  say("input " + std::filesystem::read_symlink("/proc/self/fd/0").string());
  say(::getpgrp() == ::getpid() ? "own group" : "shared group");
  // The C library keeps 32 and 33 for itself, and ignores them in what it starts.
  constexpr unsigned long kOwn = 3UL << 31;
  for (const auto& [name, signals] : signalSets()) say(name + " " + std::to_string(signals & ~kOwn));
  for (int fd = 3; fd < 256; ++fd) {
    if (::fcntl(fd, F_GETFD) >= 0) say("descriptor " + std::to_string(fd));
  }
  return 0;
}

int both(const Arguments&) {
  std::fputs("to output\n", stdout);
  std::fputs("to errors\n", stderr);
  return 0;
}

}  // namespace

int main(int count, char** values) {
  const std::map<std::string, std::function<int(const Arguments&)>> jobs = {
      {"print", print},
      {"count", countArguments},
      {"exit", exitWith},
      {"die", dieOf},
      {"touch", touch},
      {"hang", hangAround},
      {"hang-stopped", hangStopped},
      {"hang-ignoring", ignoreTermination},
      {"hang-politely", endPolitely},
      {"hang-with-daemon", hangWithDaemon},
      {"leave-daemon", leaveDaemonBehind},
      {"leave-orphans", leaveOrphans},
      {"gate", passGate},
      {"host", host},
      {"state", state},
      {"both", both},
  };
  const Arguments arguments(values + 1, values + count);
  if (arguments.size() == 1 && arguments.front().starts_with('@'))
    return countResponseFile(arguments.front().substr(1));
  if (arguments.empty() || !jobs.contains(arguments.front())) return 97;
  return jobs.at(arguments.front())({arguments.begin() + 1, arguments.end()});
}
