#include "workbench/merge/aligned_projects.h"

#include "workbench/merge/aligned_components.h"
#include "workbench/merge/aligned_files.h"
#include "workbench/merge/node_lists.h"
#include "workbench/merge/removed_components.h"
#include "workbench/merge/removed_configurations.h"

namespace forgeyard::workbench {

namespace {

// Leftovers of older records mean nothing, and so would a merge of them.
void dropLeftovers(RecordNode& node) {
  RecordNode* streams = node.find("streams");
  if (!streams) return;
  eraseItems(node, "streams", [](const RecordNode& item) { return item.learnt; });
  if (itemsOf(node, "streams").empty())
    std::erase_if(*node.get<RecordNode::Fields>(),
                  [](const RecordField& field) { return field.name == "streams"; });
}

void addGaps(const RecordNode& project, AlignedProjects& aligned) {
  for (const RecordNode& component : itemsOf(project, "components")) {
    for (const RecordNode& configuration : itemsOf(project, "configurations")) {
      const std::string name = textOf(configuration, "Name");
      if (!itemNamed(component, "settings", "configuration", name))
        aligned.gaps.emplace(numberOf(component, "Id"), name);
    }
  }
}

}  // namespace

AlignedProjects alignedProjects(RecordNode base, RecordNode ours, RecordNode theirs, MergeLog& log) {
  for (RecordNode* project : {&base, &ours, &theirs}) {
    dropLeftovers(*project);
    for (RecordNode& component : listIn(*project, "components")) dropLeftovers(component);
  }
  alignComponents(base, ours, theirs, log);
  AlignedProjects aligned;
  for (const RecordNode* side : {&ours, &theirs}) addGaps(*side, aligned);
  alignFiles(base, ours, theirs);
  settleRemovedComponents(base, ours, theirs, log);
  settleRemovedConfigurations(base, ours, theirs, log);
  aligned.base = std::move(base);
  aligned.ours = std::move(ours);
  aligned.theirs = std::move(theirs);
  return aligned;
}

}  // namespace forgeyard::workbench
