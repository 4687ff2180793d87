#pragma once

#include <string>
#include <vector>

#include "engine/status_text.h"
#include "platform/storage/structured_storage.h"
#include "typelib/project.h"

namespace forgeyard {

inline std::string quoted(const char* kind, const BString& name) {
  return std::string(kind) + " \"" + name.narrow() + "\"";
}

// What was found damaged in an open compound file: clauses without a full stop, for omissions of this part.
inline constexpr const char* kDamagedPart = "a part of the file";
inline std::vector<std::string> damageOf(IStorage& root) {
  std::vector<BString> findings;
  if (const Ref<IDamageReport> report = query<IDamageReport>(&root)) check(report->Findings(&findings));
  std::vector<std::string> clauses;
  for (const BString& finding : findings) {
    clauses.push_back(finding.narrow());
    if (clauses.back().ends_with('.')) clauses.back().pop_back();
  }
  return clauses;
}

}  // namespace forgeyard
