#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "workbench/session/host.h"

namespace forgeyard::console {

// One line on a terminal that counts what a long job has done, gone at the end; nothing in a pipe.
class ProgressCounter final : public workbench::Progress {
 public:
  // `what` stands behind the number: "files read".
  ProgressCounter(std::string what, bool quiet);
  ~ProgressCounter() override;

  void step() override;

 private:
  std::string what_;
  bool shown_;
  bool written_ = false;
  std::size_t count_ = 0;
  std::chrono::steady_clock::time_point next_;
};

}  // namespace forgeyard::console
