#include "hosts/console/doctor/check_results.h"

#include <algorithm>

namespace forgeyard::console {

const char* toText(CheckResult::State state) {
  switch (state) {
    case CheckResult::State::Ok:
      return "ok";
    case CheckResult::State::Warning:
      return "warning";
    case CheckResult::State::Problem:
      break;
  }
  return "problem";
}

std::size_t CheckResults::count(CheckResult::State state) const {
  return static_cast<std::size_t>(
      std::count_if(all_.begin(), all_.end(), [&](const CheckResult& one) { return one.state == state; }));
}

}  // namespace forgeyard::console
