#pragma once

#include <functional>
#include <string>
#include <vector>

namespace forgeyard::bench {

// What one child process took.
struct Run {
  double milliseconds = 0;
  double peakMegabytes = 0;  // largest resident set of the child
  int exitCode = 0;
};

// Runs a program to its end in a directory, its output in `outputFile` ("" for /dev/null). Throws
// std::runtime_error when it can't be started or its exit code isn't `expected`.
Run runProgram(const std::vector<std::string>& command, const std::string& directory,
               const std::string& outputFile = "", int expected = 0);

double millisecondsOf(const std::function<void()>& work);

double median(std::vector<double> values);

// One case with several contenders: each round runs all of them once, so that they share the machine's mood.
class Contest {
 public:
  // `run` returns milliseconds (or another quantity) and prepares itself.
  void add(std::string name, std::function<double()> run) {
    contenders_.push_back({std::move(name), std::move(run), {}});
  }
  void run(int rounds);
  double medianOf(const std::string& name) const;

 private:
  struct Contender {
    std::string name;
    std::function<double()> run;
    std::vector<double> results;
  };
  std::vector<Contender> contenders_;
};

// The result: one row for each quantity that has an aim.
struct Row {
  std::string what;
  std::string measured;  // medians with their units
  double ratio = 0;
  double aim = 0;  // the ratio (or quantity) is to be at most this; 0: no aim
};
void printTable(const std::vector<Row>& rows);

}  // namespace forgeyard::bench
