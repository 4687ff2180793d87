#pragma once

#include <string>
#include <unordered_set>

namespace forgeyard::workbench {

// The files and directories below the directory that git is told to ignore, as paths relative to it without a
// slash at their end. Empty where git has no say: no work tree, no git, or the directory itself is ignored.
std::unordered_set<std::string> ignoredByGit(const std::string& directory);

}  // namespace forgeyard::workbench
