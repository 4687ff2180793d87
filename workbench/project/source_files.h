#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "typelib/folder.h"
#include "workbench/base/failure.h"
#include "workbench/project/components.h"
#include "workbench/project/project_paths.h"

namespace forgeyard::workbench {

struct ProjectSource {
  Ref<ISourceFile> object;
  BString name;  // full path in the model's spelling
};

// A folder with its files, in their order.
struct FolderContents {
  Component folder;
  Ref<ISourceFiles> list;
  std::vector<ProjectSource> files;
};

// Whether it feeds its files to what is connected, in the active configuration.
bool isEnabled(const FolderContents& folder);

// All folders, in the project's order.
std::vector<FolderContents> foldersOf(IProject& project);

// The files of folders by their names.
class SourceNames {
 public:
  // Borrows the folders.
  explicit SourceNames(const std::vector<FolderContents>& folders);

  bool contains(const BString& name) const { return byName_.contains(name); }
  // The file of that name, or else one whose name differs in case alone; null if there is none. Unlike the
  // project's own look-up this takes no name for a pattern.
  const ProjectSource* find(const BString& name) const;

 private:
  std::unordered_map<BString, const ProjectSource*> byName_;
};

// The Failure for a path that names no file of the project, with the nearest one that does.
Failure unknownFile(const std::string& path, const std::vector<FolderContents>& folders,
                    const ProjectPaths& paths);

}  // namespace forgeyard::workbench
