#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "workbench/diagnostics/diagnostic.h"

namespace forgeyard::workbench {

// One error or warning of a build, however often the tools have said it.
struct Finding {
  Diagnostic diagnostic;
  std::string component;  // the one whose tool said it first
  std::size_t count = 1;

  // The place, or who has said it if none is known.
  std::string where() const;
};

// The errors and warnings of a build, in the order in which they came first.
class Findings {
 public:
  void toolStarted();
  // Notes are not kept.
  void add(const Diagnostic& diagnostic, const std::string& component);
  // A tool that fails without a word that is understood counts as an error: in the file that it was for, if
  // it was for one. Nothing for a tool that was stopped. Returns that error, which no line has told.
  std::optional<Diagnostic> toolEnded(const std::string& component, const std::string& file,
                                      std::optional<std::int32_t> exitCode);

  const std::vector<Finding>& errors() const { return errors_; }
  const std::vector<Finding>& warnings() const { return warnings_; }
  bool empty() const { return errors_.empty() && warnings_.empty(); }

 private:
  using Key = std::tuple<Severity, std::string, std::string>;

  void keep(Finding finding);

  std::vector<Finding> errors_;
  std::vector<Finding> warnings_;
  std::map<Key, std::size_t> known_;   // place in its list
  std::vector<Finding> consequences_;  // of the tool that runs
  bool understood_ = false;            // an error of that tool itself
};

}  // namespace forgeyard::workbench
