#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/project/project_paths.h"

namespace forgeyard::workbench {

// The names that a tool gives to files, as the user would: relative to the project's directory for what lies
// below that. Tools run in that directory; a tool that goes elsewhere, as "make -C" does, says so.
class ToolPaths {
 public:
  explicit ToolPaths(const ProjectPaths& paths) : paths_(paths) {}

  // Another tool starts.
  void toolStarted() { directories_.clear(); }
  // Every line of the tool in turn.
  void follow(std::u16string_view line);
  std::string toUser(const std::string& file) const;

 private:
  const ProjectPaths& paths_;
  std::vector<std::string> directories_;  // that the tool has entered, absolute
};

}  // namespace forgeyard::workbench
