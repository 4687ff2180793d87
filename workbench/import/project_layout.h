#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "workbench/import/import_plan.h"

namespace forgeyard::workbench {

enum class FolderMode : std::uint8_t { ByDirectory, ByKind };

// Sources that are compiled alike.
struct CompileGroup {
  std::string label;                 // tells its component from others; may be empty
  std::vector<Assignment> settings;  // of the compiler component
  std::vector<std::string> files;    // host paths, absolute
  bool assemblerApart = true;        // whether its assembler sources go to an assembler instead
};

struct LinkTools {
  std::string driver = "gcc";  // the compiler driver that links
  std::string archiver = "ar";
  std::string options;  // behind the objects: "-lm"
  std::string script;   // host path of a linker script: the linker component does it; may be empty
};

// What a project is to build.
struct ProjectParts {
  std::string name;
  std::string root;  // the project's directory
  FolderMode folders = FolderMode::ByDirectory;
  std::vector<CompileGroup> groups;
  std::vector<Assignment> assemblerSettings;
  std::vector<std::string> shown;  // headers and the like: in folders, not built; host paths, absolute
  std::vector<std::string> mains;  // those of the groups' files that have a function main
  // Where several have one: what each program is to be called, if that is known, and the main of the program
  // that a source belongs to, for sources that aren't for all of them.
  std::map<std::string, std::string> programNames;
  std::map<std::string, std::string> programMains;
  LinkTools link;
};

// Divides the files among folders and tools. No two tools write the same object: sources of one name go to
// tools with object directories of their own. One main makes a program of all objects, several make a program
// each, of its own object and all the others, none makes a library.
ImportPlan layOut(const ProjectParts& parts, Notes& notes);

}  // namespace forgeyard::workbench
