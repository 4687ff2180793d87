#include "hosts/console/plan/status.h"

#include <algorithm>

#include "hosts/console/base/nearest.h"
#include "hosts/console/base/program_paths.h"
#include "hosts/console/plan/build_plan.h"
#include "hosts/console/project/configurations.h"
#include "hosts/console/project/source_files.h"
#include "hosts/console/session/first_start.h"
#include "hosts/console/session/targets.h"
#include "platform/files/host_location.h"
#include "typelib/classes.h"

namespace forgeyard::console {

namespace {

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string stateOf(const ComponentPlan& entry) {
  if (!entry.reached) return "waits for what feeds it";
  if (!entry.plan.problems.empty()) return "can't run";
  if (entry.plan.inputs.empty()) return "no inputs to build";
  if (entry.needed == 0) return "up to date";
  return entry.plan.runs.front().file.isNull() ? "out of date"
                                               : std::to_string(entry.needed) + " out of date";
}

std::string feedOf(const FolderContents& folder) {
  std::int32_t enabled = 1;
  check(folder.folder.object.as<IFolder>()->get_Enabled(&enabled));
  return counted(folder.files.size(), "file") + (enabled ? "" : ", disabled in this configuration");
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
    rows.push_back({std::string(FOLDER_KIND), folder.folder.name, feedOf(folder)});
  for (const ComponentPlan& entry : plan.components) {
    const std::string files = counted(entry.plan.inputs.size(), "input") + ", " +
                              counted(entry.plan.outputs.size(), "output") + ", ";
    rows.push_back(
        {entry.component.kindName(), entry.component.name, (entry.reached ? files : "") + stateOf(entry)});
  }
  table(project.session().output(), rows);
}

// The programs that the components' commands begin with, and those that adapters drive, as far as they are
// missing.
std::vector<std::string> missingTools(Session& session, const ProjectPlan& plan) {
  const std::string adapters = adapterDirectory(session.registry());
  std::vector<std::string> missing;
  const auto note = [&](const std::string& component, const std::string& program) {
    missing.push_back(component + ": " + program + " is not found in " + adapters + " or on PATH");
  };
  for (const ComponentPlan& entry : plan.components) {
    if (entry.plan.runs.empty()) continue;
    for (const std::string& program : missingPrograms(entry.plan.runs.front().command.narrow(), adapters))
      note(entry.component.name, program);
    if (!entry.component.kind || entry.component.kind->clsid != CLSID_Linker) continue;
    const std::string linker = registeredLinker(session.registry());
    if (linker.empty()) {
      missing.push_back(entry.component.name + ": no GNU linker is registered: forgeyard target detect");
    } else if (!findProgram(linkerProgram(linker))) {
      note(entry.component.name, linkerProgram(linker));
    }
  }
  return missing;
}

void showMissing(OpenProject& project, const ProjectPlan& plan) {
  LineWriter& out = project.session().output();
  for (const ComponentPlan& entry : plan.components) {
    for (const BString& problem : entry.plan.problems)
      out.line("Problem: " + entry.component.name + ": " + problem.narrow());
  }
  for (const std::string& line : missingTools(project.session(), plan)) out.line("Missing: " + line + ".");
}

std::string headLine(OpenProject& project) {
  const Ref<IConfiguration> configuration = project.configuration();
  const std::string target = targetOf(*configuration);
  BString name;
  check(project.project().get_Name(&name));
  return name.narrow() + " (" + project.file().host + "), configuration " + nameOf(*configuration) +
         (target.empty() ? ", no target" : ", target " + target);
}

}  // namespace

ExitCode showStatus(OpenProject& project) {
  LineWriter& out = project.session().output();
  std::int32_t changed = 0;
  check(project.project().get_Dirty(&changed));
  const ProjectPlan plan = planOf(project, E_TASK_BUILD);
  out.line(headLine(project));
  showComponents(project, plan);
  showMissing(project, plan);
  if (project.isIncomplete()) {
    out.line(std::string_view("A part of the file could not be read; saving would lose it."));
  } else if (changed) {
    out.line(std::string_view("The project has changes that are not stored."));
  }
  return project.session().finish(plan.hasProblems() ? ExitCode::BuildErrors : ExitCode::Success);
}

}  // namespace forgeyard::console
