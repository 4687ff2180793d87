#include "bench/measure.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace forgeyard::bench {

double millisecondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

Run runProgram(const std::vector<std::string>& command, const std::string& directory,
               const std::string& outputFile, int expected) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
  posix_spawn_file_actions_addopen(&actions, 1, outputFile.empty() ? "/dev/null" : outputFile.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0666);
  Run result;
  int status = 0;
  rusage usage{};
  result.milliseconds = millisecondsOf([&] {
    pid_t child = 0;
    if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
      throw std::runtime_error("cannot start " + command[0]);
    }
    wait4(child, &status, 0, &usage);
  });
  posix_spawn_file_actions_destroy(&actions);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.peakMegabytes = static_cast<double>(usage.ru_maxrss) / 1024;
  if (result.exitCode != expected) {
    throw std::runtime_error(command[0] + " ended with " + std::to_string(result.exitCode));
  }
  return result;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 ? values[half] : (values[half - 1] + values[half]) / 2;
}

void Contest::run(int rounds) {
  for (int round = 0; round < rounds; ++round) {
    for (Contender& contender : contenders_) contender.results.push_back(contender.run());
  }
}

double Contest::medianOf(const std::string& name) const {
  for (const Contender& contender : contenders_) {
    if (contender.name == name) return median(contender.results);
  }
  throw std::runtime_error("no contender " + name);
}

void printTable(const std::vector<Row>& rows) {
  std::printf("%-58s %-44s %7s %6s\n", "what", "medians", "ratio", "aim");
  for (const Row& row : rows) {
    std::printf("%-58s %-44s %7.2f ", row.what.c_str(), row.measured.c_str(), row.ratio);
    if (row.aim > 0) {
      std::printf("%6.2f%s\n", row.aim, row.ratio <= row.aim ? "" : "  missed");
    } else {
      std::printf("%6s\n", "-");
    }
  }
}

}  // namespace forgeyard::bench
