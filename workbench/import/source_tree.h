#pragma once

#include <string>
#include <vector>

#include "workbench/import/notes.h"
#include "workbench/import/source_names.h"
#include "workbench/session/host.h"

namespace forgeyard::workbench {

struct TreeFile {
  std::string path;  // relative to the tree's root, with slashes
  FileKind kind = FileKind::Other;
};

// The files below a directory that may matter to a project, in the order of their paths, directory by
// directory.
struct SourceTree {
  std::string root;  // host path, absolute
  std::vector<TreeFile> files;
};

// Walks the directory. Left out are hidden files and directories, what git ignores, directories that hold the
// results of a build, and links into the tree itself; files that a project can't have are noted. Throws a
// Failure if the directory can't be read at all.
SourceTree readSourceTree(const std::string& root, Notes& notes, Host& host);

}  // namespace forgeyard::workbench
