#include "hosts/console/plan/status.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "hosts/console/plan/plan_json.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/session/session.h"
#include "workbench/base/words.h"
#include "workbench/plan/project_status.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Json = nlohmann::ordered_json;

std::string feedOf(const FolderStatus& folder) {
  return counted(folder.contents.files.size(), "file") +
         (folder.enabled ? "" : ", disabled in this configuration");
}

// Lines in columns: kind, name, and what there is to say.
void table(LineWriter& out, const std::vector<std::array<std::string, 3>>& rows) {
  std::array<std::size_t, 2> widths{};
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < widths.size(); ++i)
      widths[i] = std::max(widths[i], BString::fromNarrow(row[i]).size());
  }
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < widths.size(); ++i)
      line += "  " + row[i] + std::string(widths[i] - BString::fromNarrow(row[i]).size(), ' ');
    out.line(line + "  " + row[2]);
  }
}

void showComponents(LineWriter& out, const ProjectStatus& status) {
  std::vector<std::array<std::string, 3>> rows;
  for (const FolderStatus& folder : status.folders)
    rows.push_back({std::string(kFolderKind), folder.contents.folder.name, feedOf(folder)});
  for (const ComponentPlan& entry : status.plan.components) {
    const std::string files = counted(entry.plan.inputs.size(), "input") + ", " +
                              counted(entry.plan.outputs.size(), "output") + ", ";
    rows.push_back(
        {entry.component.kindName(), entry.component.name, (entry.reached ? files : "") + stateWords(entry)});
  }
  table(out, rows);
}

void showLines(LineWriter& out, const ProjectFile& file, const ProjectStatus& status) {
  out.line(status.name + " (" + file.host + "), configuration " + status.configuration +
           (status.target.empty() ? ", no target" : ", target " + status.target));
  showComponents(out, status);
  for (const ComponentPlan& entry : status.plan.components) {
    for (const BString& problem : entry.plan.problems)
      out.line("Problem: " + entry.component.name + ": " + problem.narrow());
  }
  for (const MissingTool& tool : status.missing)
    out.line("Missing: " + tool.component + ": " + tool.text + ".");
  if (status.incomplete)
    out.line(std::string_view("A part of the file could not be read; saving would lose it."));
  if (status.unsaved) out.line(std::string_view("The project has changes that are not stored."));
}

void showObjects(LineWriter& out, const OpenProject& project, const ProjectStatus& status) {
  Json members{{"project", status.name},
               {"file", project.file().host},
               {"configuration", status.configuration},
               {"incomplete", status.incomplete},
               {"unsaved", status.unsaved}};
  if (!status.target.empty()) members["target"] = status.target;
  writeObject(out, "project", members);
  const ProjectPaths paths(project.project());
  for (const FolderStatus& folder : status.folders) writeFolder(out, folder, paths);
  for (const ComponentPlan& entry : status.plan.components) writeComponent(out, entry, paths);
  for (const MissingTool& tool : status.missing)
    writeObject(out, "missing_tool", {{"component", tool.component}, {"text", tool.text}});
}

}  // namespace

ExitCode showStatus(Session& session, OpenProject& project) {
  const ProjectStatus status = statusOf(project);
  if (session.options().json) {
    showObjects(session.output(), project, status);
  } else {
    showLines(session.output(), project.file(), status);
  }
  return session.finish(status.plan.hasProblems() ? ExitCode::BuildErrors : ExitCode::Success);
}

}  // namespace forgeyard::console
