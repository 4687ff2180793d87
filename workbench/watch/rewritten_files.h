#pragma once

#include <cstddef>
#include <map>

#include "workbench/watch/file_states.h"

namespace forgeyard::workbench {

// Tells files that the tools of a build only write anew, with what stood in them, from those that somebody
// has changed meanwhile: a file that has changed during a build is looked into from then on.
class RewrittenFiles {
 public:
  // Looks into the files, ahead of a build.
  void look();
  // Takes away the files whose contents are what they were at that look, and notes the others.
  void takeFrom(FileStates::Paths& changed);
  // Takes these away from now on, whatever stands in them.
  void overlook(const FileStates::Paths& paths);

 private:
  std::map<std::string, std::size_t> contents_;  // host path, what stood in it as a hash
  FileStates::Paths overlooked_;
};

}  // namespace forgeyard::workbench
