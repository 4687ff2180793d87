#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace forgeyard::console {

// What the doctor has looked at, and how it stands.
struct CheckResult {
  enum class State : std::uint8_t {
    Ok,
    Warning,  // something can't be used, or soon won't be
    Problem,  // builds can't work
  };

  State state = State::Ok;
  std::string subject;  // "registry"
  std::string text;     // what there is, with names and reasons
  std::string advice;   // what to do; empty where nothing is to be done
};

// "ok", "warning" or "problem".
const char* toText(CheckResult::State state);

class CheckResults {
 public:
  void ok(std::string subject, std::string text) {
    all_.push_back({CheckResult::State::Ok, std::move(subject), std::move(text), ""});
  }
  void warning(std::string subject, std::string text, std::string advice) {
    all_.push_back({CheckResult::State::Warning, std::move(subject), std::move(text), std::move(advice)});
  }
  void problem(std::string subject, std::string text, std::string advice) {
    all_.push_back({CheckResult::State::Problem, std::move(subject), std::move(text), std::move(advice)});
  }

  const std::vector<CheckResult>& all() const { return all_; }
  std::size_t count(CheckResult::State state) const;

 private:
  std::vector<CheckResult> all_;
};

}  // namespace forgeyard::console
