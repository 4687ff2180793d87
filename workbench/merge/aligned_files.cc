#include "workbench/merge/aligned_files.h"

#include <map>
#include <set>

#include "workbench/merge/node_lists.h"

namespace forgeyard::workbench {

namespace {

using List = RecordNode::List;

// Takes the files out of the folders.
List takeFiles(RecordNode& project) {
  List files;
  for (RecordNode& component : listIn(project, "components")) {
    RecordNode* own = component.find("files");
    if (!own) continue;
    for (RecordNode& file : *own->get<List>()) {
      file.add("folder", {numberOf(component, "Id")});
      files.push_back(std::move(file));
    }
    own->get<List>()->clear();
  }
  return files;
}

std::string fileKey(const RecordNode& file, std::size_t number) {
  return textOf(file, "PersistAs") + "\n" + std::to_string(number);
}

void nameBaseFiles(List& files) {
  std::map<std::string, std::size_t> seen;
  for (RecordNode& file : files) {
    const std::size_t number = seen[textOf(file, "PersistAs")]++;
    file.add("key", {BString::fromNarrow(fileKey(file, number))});
  }
}

// A file is the one that stood in the same folder, else one that has left another folder, else a new one.
void nameSideFiles(List& files, const List& base) {
  std::map<std::string, std::vector<const RecordNode*>> oldFiles;
  for (const RecordNode& old : base) oldFiles[textOf(old, "PersistAs")].push_back(&old);
  std::set<std::string> taken;
  const auto claim = [&](RecordNode& file, bool sameFolder) {
    if (file.find("key")) return;
    for (const RecordNode* old : oldFiles[textOf(file, "PersistAs")]) {
      const std::string key = textOf(*old, "key");
      if (sameFolder && numberOf(*old, "folder") != numberOf(file, "folder")) continue;
      if (!taken.insert(key).second) continue;
      file.add("key", {BString::fromNarrow(key)});
      return;
    }
  };
  for (RecordNode& file : files) claim(file, true);
  for (RecordNode& file : files) claim(file, false);
  for (RecordNode& file : files) {
    if (file.find("key")) continue;
    std::size_t number = base.size();
    while (!taken.insert(fileKey(file, number)).second) ++number;
    file.add("key", {BString::fromNarrow(fileKey(file, number))});
  }
}

}  // namespace

void alignFiles(RecordNode& base, RecordNode& ours, RecordNode& theirs) {
  List oldFiles = takeFiles(base);
  nameBaseFiles(oldFiles);
  for (RecordNode* project : {&ours, &theirs}) {
    List files = takeFiles(*project);
    nameSideFiles(files, oldFiles);
    project->add("files", {std::move(files)});
  }
  base.add("files", {std::move(oldFiles)});
}

}  // namespace forgeyard::workbench
