#include "hosts/console/plan/plan_json.h"

#include <nlohmann/json.hpp>

#include "hosts/console/services/json_lines.h"
#include "workbench/plan/reasons.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Json = nlohmann::ordered_json;

Json pathList(const std::vector<BString>& names, const ProjectPaths& paths) {
  Json list = Json::array();
  for (const BString& name : names) list.push_back(paths.toUser(name));
  return list;
}

}  // namespace

void writeFolder(LineWriter& out, const FolderStatus& folder, const ProjectPaths& paths) {
  Json files = Json::array();
  for (const ProjectSource& file : folder.contents.files) files.push_back(paths.toUser(file.name));
  writeObject(
      out, "folder",
      {{"folder", folder.contents.folder.name}, {"enabled", folder.enabled}, {"files", std::move(files)}});
}

void writeComponent(LineWriter& out, const ComponentPlan& entry, const ProjectPaths& paths) {
  Json members{{"component", entry.component.name},
               {"kind", entry.component.kindName()},
               {"state", toText(stateOf(entry))}};
  if (entry.reached) {
    members["inputs"] = pathList(entry.plan.inputs, paths);
    members["outputs"] = pathList(entry.plan.outputs, paths);
    members["out_of_date"] = entry.needed;
  }
  for (const BString& problem : entry.plan.problems) members["problems"].push_back(problem.narrow());
  writeObject(out, "component", members);
}

void writeRun(LineWriter& out, const Component& component, const PlannedRun& run, const ProjectPaths& paths) {
  const Staleness& stale = run.staleness;
  Json members{{"component", component.name}};
  if (!run.file.isNull()) members["file"] = paths.toUser(run.file);
  members["outputs"] = pathList(run.outputs, paths);
  members["command"] = run.command.narrow();
  members["needed"] = bool(stale);
  members["reason"] = reasonName(stale.why);
  members["text"] = reasonFor(run, paths);
  if (!stale.output.isNull()) members["output"] = paths.toUser(stale.output);
  if (!stale.cause.isNull()) members["cause"] = paths.toUser(stale.cause);
  if (stale.why == Staleness::Why::DependencyNewer) {
    if (stale.outputTime < kTimeToCome) members["output_time_ns"] = stale.outputTime;
    if (stale.causeTime < kTimeToCome) members["cause_time_ns"] = stale.causeTime;
  }
  writeObject(out, "planned_run", members);
}

}  // namespace forgeyard::console
