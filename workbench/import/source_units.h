#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "workbench/import/project_layout.h"

namespace forgeyard::workbench {

// The spawner gets a command as one argument, of which the system takes 131,071 bytes. So long a list of
// objects leaves room for the rest.
inline constexpr std::size_t kLongestObjectList = 100000;

// Names that are given once.
class NamePool {
 public:
  std::string unlikeOthers(const std::string& wanted) {
    std::string name = wanted;
    for (int number = 2; !taken_.insert(name).second; ++number) name = wanted + " " + std::to_string(number);
    return name;
  }

 private:
  std::unordered_set<std::string> taken_;
};

// Of what belongs to all programs.
inline constexpr int kCommonProgram = -1;

// Files that go together into one folder and one tool.
struct SourceUnit {
  std::string label;  // the directory, empty for the root; or the kind
  std::size_t group = 0;
  bool assembled = false;
  int program = kCommonProgram;  // or its place among the programs
  std::vector<std::string> files;
  std::set<std::string> objects;  // their stems as the look-up of files compares them

  // False if it has an object of that name already.
  bool take(const std::string& file);
};

// The sources of a project in units in which no two make objects of one name.
struct SourceUnits {
  std::vector<SourceUnit> units;
  std::vector<std::string> programs;  // names; empty if there is one at most
  bool joined = false;                // the objects are too many for one command
};
SourceUnits sourceUnitsOf(const ProjectParts& parts);

// Where the file lies below the project's root; empty for that itself, absolute for what lies elsewhere.
std::string directoryLabel(const ProjectParts& parts, const std::string& file);
// The characters that the names of the unit's objects take in a list.
std::size_t objectListLength(const ProjectParts& parts, const SourceUnit& unit);
// The name without characters that mean something in a list of outputs or a command.
std::string plainName(std::string name);

}  // namespace forgeyard::workbench
