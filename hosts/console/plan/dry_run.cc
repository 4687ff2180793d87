#include "hosts/console/plan/dry_run.h"

#include "hosts/console/plan/plan_json.h"
#include "hosts/console/session/session.h"
#include "platform/files/file_system.h"
#include "workbench/plan/build_plan.h"
#include "workbench/project/project_paths.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

void listCommands(Session& session, const ProjectPlan& plan, const ProjectPaths& paths) {
  for (const ComponentPlan& entry : plan.components) {
    for (const PlannedRun& run : entry.plan.runs) {
      if (!run.staleness) continue;
      if (session.options().json) {
        writeRun(session.output(), entry.component, run, paths);
      } else {
        session.output().line(run.command.view());
      }
    }
  }
}

void listDeletions(LineWriter& out, const ProjectPlan& plan, const ProjectPaths& paths) {
  for (const ComponentPlan& entry : plan.components) {
    for (const BString& file : entry.plan.outputs) {
      if (files().exists(file)) out.line(paths.toUser(file));
    }
  }
}

}  // namespace

ExitCode dryRun(Session& session, OpenProject& project, e_task task) {
  const ProjectPlan plan = planOf(project, task);
  const ProjectPaths paths(project.project());
  if (task == E_TASK_CLEAN) {
    listDeletions(session.output(), plan, paths);
    return session.finish();
  }
  listCommands(session, plan, paths);
  // Ahead of what follows on the other stream.
  session.output().flush();
  complainOfAll(problemsIn(plan));
  if (plan.hasProblems()) return session.finish(ExitCode::BuildErrors);
  if (plan.needed() == 0 && !session.options().quiet)
    session.output().line(task == E_TASK_COMPILE ? std::string_view("No component takes these files.")
                                                 : std::string_view("All outputs up to date."));
  return session.finish();
}

}  // namespace forgeyard::console
