#include "workbench/diagnostics/findings.h"

#include <utility>

namespace forgeyard::workbench {

std::string Finding::where() const {
  std::string place = diagnostic.place();
  return place.empty() ? component : place;
}

void Findings::toolStarted() {
  consequences_.clear();
  understood_ = false;
}

void Findings::add(const Diagnostic& diagnostic, const std::string& component) {
  if (diagnostic.severity == Severity::Note) return;
  Finding finding{diagnostic, component};
  if (diagnostic.consequence) {
    consequences_.push_back(std::move(finding));
    return;
  }
  understood_ = understood_ || diagnostic.severity == Severity::Error;
  keep(std::move(finding));
}

std::optional<Diagnostic> Findings::toolEnded(const std::string& component, const std::string& file,
                                              std::optional<std::int32_t> exitCode) {
  if (understood_ || !exitCode || *exitCode == 0) return std::nullopt;
  std::optional<Diagnostic> failure;
  if (consequences_.empty()) {
    failure.emplace();
    failure->severity = Severity::Error;
    failure->file = file;
    failure->text = "\"" + component + "\" ended with exit code " + std::to_string(*exitCode);
    consequences_.push_back({*failure, component});
  }
  for (Finding& finding : consequences_) keep(std::move(finding));
  return failure;
}

void Findings::keep(Finding finding) {
  std::vector<Finding>& list = finding.diagnostic.severity == Severity::Error ? errors_ : warnings_;
  Key key{finding.diagnostic.severity, finding.where(), finding.diagnostic.text};
  const auto [known, isNew] = known_.try_emplace(std::move(key), list.size());
  if (isNew) {
    list.push_back(std::move(finding));
  } else {
    ++list[known->second].count;
  }
}

}  // namespace forgeyard::workbench
