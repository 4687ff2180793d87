#include "hosts/console/doctor/findings.h"

#include <algorithm>

namespace forgeyard::console {

const char* toText(Finding::State state) {
  switch (state) {
    case Finding::State::Ok:
      return "ok";
    case Finding::State::Warning:
      return "warning";
    case Finding::State::Problem:
      break;
  }
  return "problem";
}

std::size_t Findings::count(Finding::State state) const {
  return static_cast<std::size_t>(
      std::count_if(all_.begin(), all_.end(), [&](const Finding& one) { return one.state == state; }));
}

}  // namespace forgeyard::console
