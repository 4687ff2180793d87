#include "workbench/plan/project_status.h"

#include "typelib/classes.h"
#include "workbench/base/program_paths.h"
#include "workbench/project/configurations.h"
#include "workbench/session/first_start.h"
#include "workbench/session/targets.h"

namespace forgeyard::workbench {

namespace {

// The programs that the components' commands begin with, and those that adapters drive, as far as they are
// missing.
std::vector<MissingTool> missingTools(const Registry& registry, const ProjectPlan& plan) {
  const std::string adapters = adapterDirectory(registry);
  std::vector<MissingTool> missing;
  const auto note = [&](const std::string& component, const std::string& program) {
    missing.push_back({component, program + " is not found in " + adapters + " or on PATH"});
  };
  for (const ComponentPlan& entry : plan.components) {
    if (entry.plan.runs.empty()) continue;
    for (const std::string& program : missingPrograms(entry.plan.runs.front().command.narrow(), adapters))
      note(entry.component.name, program);
    if (!entry.component.kind || entry.component.kind->clsid != CLSID_Linker) continue;
    const std::string linker = registeredLinker(registry);
    if (linker.empty()) {
      missing.push_back({entry.component.name, "no GNU linker is registered: forgeyard target detect"});
    } else if (!findProgram(linkerProgram(linker))) {
      note(entry.component.name, linkerProgram(linker));
    }
  }
  return missing;
}

}  // namespace

ProjectStatus statusOf(OpenProject& project) {
  const Ref<IConfiguration> configuration = project.configuration();
  const ActiveFor active(project.project(), configuration);
  ProjectStatus status;
  std::int32_t changed = 0;
  check(project.project().get_Dirty(&changed));
  BString name;
  check(project.project().get_Name(&name));
  status.name = name.narrow();
  status.configuration = nameOf(*configuration);
  status.target = targetOf(*configuration);
  status.incomplete = project.isIncomplete();
  status.unsaved = changed != 0;
  status.plan = planOf(project, E_TASK_BUILD);
  for (FolderContents& folder : foldersOf(project.project())) {
    const bool enabled = isEnabled(folder);
    status.folders.push_back({std::move(folder), enabled});
  }
  status.missing = missingTools(project.session().registry(), status.plan);
  return status;
}

}  // namespace forgeyard::workbench
