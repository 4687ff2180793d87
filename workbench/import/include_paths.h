#pragma once

#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "workbench/import/notes.h"
#include "workbench/import/source_text.h"
#include "workbench/import/source_tree.h"

namespace forgeyard::workbench {

// Finds the directories of a tree in which its files look for what they include. Which condition holds is not
// known, so it gathers what any of them may need.
class IncludePaths {
 public:
  // Borrows the tree.
  explicit IncludePaths(const SourceTree& tree);

  // One file of the tree with what it includes.
  void add(const std::string& file, const std::vector<Include>& includes);

  // Relative to the tree's root, "." for itself, sorted; a tree that is a part of a larger one may need ".."
  // or what is above that. Notes what is included and lies nowhere, or at
  // several places.
  std::vector<std::string> directories(Notes& notes);
  // The sources that others include as if they were headers.
  const std::unordered_set<std::string>& includedSources() const { return includedSources_; }
  // Whether any file includes this header of the system.
  bool usesSystemHeader(const std::string& name) const { return system_.contains(name); }

 private:
  struct Question {
    std::string file;  // the first that asks
    std::vector<std::string> candidates;
  };

  std::vector<std::string> candidatesFor(const std::string& name) const;
  void take(const std::string& path);
  std::optional<std::string> aboveRoot(const std::string& name) const;

  std::string root_;
  std::unordered_set<std::string> files_;
  std::unordered_map<std::string, std::vector<std::string>> byName_;
  std::unordered_set<std::string> includedSources_;
  std::unordered_set<std::string> system_;
  std::unordered_set<std::string> settled_;  // names that need no directory more
  std::unordered_map<std::string, Question> open_;
  std::vector<std::string> openOrder_;
  std::set<std::string> above_;                               // directories that the tree lies in: ".."
  std::vector<std::pair<std::string, std::string>> missing_;  // name, the first file that asks
};

}  // namespace forgeyard::workbench
