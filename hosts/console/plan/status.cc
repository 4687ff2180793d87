#include "hosts/console/plan/status.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/console/base/nearest.h"
#include "hosts/console/base/program_paths.h"
#include "hosts/console/base/words.h"
#include "hosts/console/plan/build_plan.h"
#include "hosts/console/plan/plan_json.h"
#include "hosts/console/project/configurations.h"
#include "hosts/console/project/source_files.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/session/first_start.h"
#include "hosts/console/session/targets.h"
#include "typelib/classes.h"

namespace forgeyard::console {

namespace {

using Json = nlohmann::ordered_json;

std::string feedOf(const FolderContents& folder) {
  return counted(folder.files.size(), "file") + (isEnabled(folder) ? "" : ", disabled in this configuration");
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

void showComponents(OpenProject& project, const ProjectPlan& plan) {
  std::vector<std::array<std::string, 3>> rows;
  for (const FolderContents& folder : foldersOf(project.project()))
    rows.push_back({std::string(kFolderKind), folder.folder.name, feedOf(folder)});
  for (const ComponentPlan& entry : plan.components) {
    const std::string files = counted(entry.plan.inputs.size(), "input") + ", " +
                              counted(entry.plan.outputs.size(), "output") + ", ";
    rows.push_back(
        {entry.component.kindName(), entry.component.name, (entry.reached ? files : "") + stateWords(entry)});
  }
  table(project.session().output(), rows);
}

struct MissingTool {
  std::string component;
  std::string text;
};

// The programs that the components' commands begin with, and those that adapters drive, as far as they are
// missing.
std::vector<MissingTool> missingTools(Session& session, const ProjectPlan& plan) {
  const std::string adapters = adapterDirectory(session.registry());
  std::vector<MissingTool> missing;
  const auto note = [&](const std::string& component, const std::string& program) {
    missing.push_back({component, program + " is not found in " + adapters + " or on PATH"});
  };
  for (const ComponentPlan& entry : plan.components) {
    if (entry.plan.runs.empty()) continue;
    for (const std::string& program : missingPrograms(entry.plan.runs.front().command.narrow(), adapters))
      note(entry.component.name, program);
    if (!entry.component.kind || entry.component.kind->clsid != CLSID_Linker) continue;
    const std::string linker = registeredLinker(session.registry());
    if (linker.empty()) {
      missing.push_back({entry.component.name, "no GNU linker is registered: forgeyard target detect"});
    } else if (!findProgram(linkerProgram(linker))) {
      note(entry.component.name, linkerProgram(linker));
    }
  }
  return missing;
}

// All that the command tells, gathered before a word of it is written.
struct Status {
  std::string name;
  std::string configuration;
  std::string target;
  bool unsaved = false;
  ProjectPlan plan;
  std::vector<MissingTool> missing;
};

Status statusOf(OpenProject& project) {
  std::int32_t changed = 0;
  check(project.project().get_Dirty(&changed));
  BString name;
  check(project.project().get_Name(&name));
  const Ref<IConfiguration> configuration = project.configuration();
  Status status{name.narrow(), nameOf(*configuration),        targetOf(*configuration),
                changed != 0,  planOf(project, E_TASK_BUILD), {}};
  status.missing = missingTools(project.session(), status.plan);
  return status;
}

void showLines(OpenProject& project, const Status& status) {
  LineWriter& out = project.session().output();
  out.line(status.name + " (" + project.file().host + "), configuration " + status.configuration +
           (status.target.empty() ? ", no target" : ", target " + status.target));
  showComponents(project, status.plan);
  for (const ComponentPlan& entry : status.plan.components) {
    for (const BString& problem : entry.plan.problems)
      out.line("Problem: " + entry.component.name + ": " + problem.narrow());
  }
  for (const MissingTool& tool : status.missing)
    out.line("Missing: " + tool.component + ": " + tool.text + ".");
  if (project.isIncomplete())
    out.line(std::string_view("A part of the file could not be read; saving would lose it."));
  if (status.unsaved) out.line(std::string_view("The project has changes that are not stored."));
}

void showObjects(OpenProject& project, const Status& status) {
  LineWriter& out = project.session().output();
  Json members{{"project", status.name},
               {"file", project.file().host},
               {"configuration", status.configuration},
               {"incomplete", project.isIncomplete()},
               {"unsaved", status.unsaved}};
  if (!status.target.empty()) members["target"] = status.target;
  writeObject(out, "project", members);
  const ProjectPaths paths(project.project());
  for (const FolderContents& folder : foldersOf(project.project())) writeFolder(out, folder, paths);
  for (const ComponentPlan& entry : status.plan.components) writeComponent(out, entry, paths);
  for (const MissingTool& tool : status.missing)
    writeObject(out, "missing_tool", {{"component", tool.component}, {"text", tool.text}});
}

}  // namespace

ExitCode showStatus(OpenProject& project) {
  const ActiveFor active(project.project(), project.configuration());
  const Status status = statusOf(project);
  project.session().options().json ? showObjects(project, status) : showLines(project, status);
  return project.session().finish(status.plan.hasProblems() ? ExitCode::BuildErrors : ExitCode::Success);
}

}  // namespace forgeyard::console
