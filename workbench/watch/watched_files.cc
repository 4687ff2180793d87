#include "workbench/watch/watched_files.h"

#include <unordered_set>

#include "platform/files/host_location.h"
#include "platform/paths/no_break_space.h"
#include "workbench/project/source_files.h"

namespace forgeyard::workbench {

FileStates::Paths watchedFiles(OpenProject& project, const ProjectPlan& plan) {
  std::unordered_set<BString> read;
  std::unordered_set<BString> made;
  const Ref<IBuildPlan> planner = query<IBuildPlan>(&project.session().tool());
  for (const ComponentPlan& entry : plan.components) {
    for (const BString& output : entry.plan.outputs) {
      made.insert(output);
      made.insert(withNoBreakSpaces(output));
    }
    for (const BString& input : entry.plan.inputs) {
      std::vector<BString> dependencies;
      check(planner->GetDependencies(input, &dependencies));
      read.insert(dependencies.begin(), dependencies.end());
      read.insert(input);
    }
  }
  std::erase_if(read, [&](const BString& name) { return made.contains(name); });
  for (const FolderContents& folder : foldersOf(project.project())) {
    for (const ProjectSource& file : folder.files) read.insert(file.name);
  }
  FileStates::Paths paths;
  for (const BString& name : read) {
    if (const auto host = toHost(name)) paths.insert(*host);
  }
  return paths;
}

}  // namespace forgeyard::workbench
