#include "workbench/project/source_files.h"

#include <algorithm>

#include "platform/text/fold.h"
#include "workbench/base/nearest.h"
#include "workbench/project/collections.h"

namespace forgeyard::workbench {

std::vector<FolderContents> foldersOf(IProject& project) {
  std::vector<FolderContents> folders;
  for (Component& component : componentsOf(project)) {
    const Ref<IFolder> folder = component.object.as<IFolder>();
    if (!folder) continue;
    FolderContents contents{std::move(component), nullptr, {}};
    check(folder->get_SourceFiles(&contents.list));
    for (Ref<ISourceFile>& file : elementsOf<ISourceFile>(*contents.list)) {
      BString name;
      check(file->get_Name(&name));
      contents.files.push_back({std::move(file), std::move(name)});
    }
    folders.push_back(std::move(contents));
  }
  return folders;
}

bool isEnabled(const FolderContents& folder) {
  std::int32_t enabled = 0;
  check(folder.folder.object.as<IFolder>()->get_Enabled(&enabled));
  return enabled != 0;
}

SourceNames::SourceNames(const std::vector<FolderContents>& folders) {
  for (const FolderContents& folder : folders) {
    for (const ProjectSource& file : folder.files) byName_.emplace(file.name, &file);
  }
}

const ProjectSource* SourceNames::find(const BString& name) const {
  if (const auto exact = byName_.find(name); exact != byName_.end()) return exact->second;
  const auto other = std::find_if(byName_.begin(), byName_.end(),
                                  [&](const auto& entry) { return equalFolded(entry.first, name); });
  return other == byName_.end() ? nullptr : other->second;
}

Failure unknownFile(const std::string& path, const std::vector<FolderContents>& folders,
                    const ProjectPaths& paths) {
  std::vector<std::string> names;
  for (const FolderContents& folder : folders) {
    for (const ProjectSource& file : folder.files) names.push_back(paths.toUser(file.name));
  }
  return Failure(path + " is no file of the project." +
                 suggestion(paths.toUser(paths.toProject(path)), names, "files in it"));
}

}  // namespace forgeyard::workbench
