// What the tests start as another process: one small job for each first argument.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/threads/named_event.h"
#include "platform/threads/named_mutex.h"
#include "platform/threads/process.h"
#include "platform/threads/thread.h"

using namespace forgeyard;

namespace {

using Arguments = std::vector<std::string>;

void say(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

// Until somebody kills us.
[[noreturn]] void hang() {
  for (;;) ::pause();
}

int exitWith(const Arguments& arguments) {
  return std::stoi(arguments.at(0));
}

int dieOf(const Arguments& arguments) {
  ::raise(std::stoi(arguments.at(0)));
  return 99;
}

int hangAround(const Arguments&) {
  say("ready");
  hang();
}

int both(const Arguments&) {
  std::fputs("to output\n", stdout);
  std::fputs("to errors\n", stderr);
  return 0;
}

// Starts itself with the two outputs crossed.
int cross(const Arguments&) {
  ProcessOptions options;
  options.program = "/proc/self/exe";
  options.arguments = {"child", "both"};
  options.standardOutput = STDERR_FILENO;
  options.standardError = STDOUT_FILENO;
  ProcessStartError error;
  const auto process = Process::start(options, error);
  if (!process) return 98;
  waitAny({process.get()});
  return process->exitCode().value();
}

int echo(const Arguments& arguments) {
  for (const std::string& argument : arguments) say(argument);
  return 0;
}

int environment(const Arguments&) {
  for (char** variable = environ; *variable; ++variable) say(*variable);
  return 0;
}

int directory(const Arguments&) {
  say(std::filesystem::current_path().string());
  return 0;
}

int descriptors(const Arguments&) {
  std::map<std::string, std::string> open;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    open[entry.path().filename()] = std::filesystem::read_symlink(entry, gone).string();
  }
  // The one that lists the directory is our own.
  for (const auto& [number, target] : open) {
    if (target.find("/fd") == std::string::npos) say(number + " " + (number == "0" ? target : ""));
  }
  return 0;
}

int signals(const Arguments&) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("SigBlk") || line.starts_with("SigIgn")) say(line);
  }
  return 0;
}

int group(const Arguments&) {
  say(::getpgrp() == ::getpid() ? "own" : "shared");
  return 0;
}

// Sets an event that somebody else holds, or makes it; then hangs while holding it.
int setEvent(const Arguments& arguments) {
  const auto event = NamedEvent::create(arguments.at(0));
  event->set();
  say("set");
  hang();
}

int waitEvent(const Arguments& arguments) {
  const auto event = NamedEvent::open(arguments.at(0));
  if (!event) return 2;
  say("waiting");
  waitAny({event.get()});
  say("woken");
  return 0;
}

int holdMutex(const Arguments& arguments) {
  NamedMutex mutex(arguments.at(0));
  say(mutex.tryLock() ? "held" : "refused");
  hang();
}

// <mutex> <stop event> <directory> <turns>: three threads take turns in adding to one file; each leaves a
// mark while it is inside, so that two at once are found out.
int takeTurns(const Arguments& arguments) {
  const auto stop = NamedEvent::create(arguments.at(1));
  const std::string counter = arguments.at(2) + "/counter";
  const std::string mark = arguments.at(2) + "/inside";
  std::atomic<int> violations{0};
  const auto turn = [&] {
    NamedMutex mutex(arguments.at(0));
    if (waitAny(*stop, mutex) != 1) return;
    const int fd = ::open(mark.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (fd < 0) ++violations;
    ::close(fd);
    int value = 0;
    std::ifstream(counter) >> value;
    std::ofstream(counter) << value + 1;
    ::unlink(mark.c_str());
    mutex.unlock();
  };
  {
    std::vector<std::unique_ptr<Thread>> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i) {
      threads.push_back(std::make_unique<Thread>("turns", [&] {
        for (int n = 0; n < std::stoi(arguments.at(3)); ++n) turn();
      }));
    }
  }
  return violations == 0 ? 0 : 3;
}

}  // namespace

int main(int count, char** values) {
  const std::map<std::string, std::function<int(const Arguments&)>> jobs = {
      {"exit", exitWith},
      {"die", dieOf},
      {"hang", hangAround},
      {"both", both},
      {"cross", cross},
      {"echo", echo},
      {"environment", environment},
      {"directory", directory},
      {"descriptors", descriptors},
      {"signals", signals},
      {"group", group},
      {"set-event", setEvent},
      {"wait-event", waitEvent},
      {"hold-mutex", holdMutex},
      {"turns", takeTurns},
  };
  const Arguments arguments(values + 1, values + count);
  if (arguments.empty() || !jobs.contains(arguments.front())) return 97;
  return jobs.at(arguments.front())({arguments.begin() + 1, arguments.end()});
}
