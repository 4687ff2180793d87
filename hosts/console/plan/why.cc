#include "hosts/console/plan/why.h"

#include "hosts/console/plan/plan_json.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/plan/explanation.h"
#include "workbench/plan/reasons.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

// An explanation on standard output, as lines or as objects.
class Words {
 public:
  Words(Session& session, const Explanation& explanation)
      : out_(session.output()), json_(session.options().json), explanation_(explanation) {}

  void components(const std::vector<ExplainedComponent>& components) {
    for (const ExplainedComponent& one : components) {
      head(*one.entry);
      for (const PlannedRun* run : one.runs) this->run("  ", *one.entry, *run);
    }
  }

  // What has to do with one file: each line names its component.
  void file(const std::vector<ExplainedComponent>& components) {
    for (const ExplainedComponent& one : components) {
      if (one.runs.empty()) head(*one.entry);
      for (const PlannedRun* run : one.runs) this->run(one.entry->component.name + ", ", *one.entry, *run);
    }
  }

 private:
  void head(const ComponentPlan& entry) {
    if (json_) return writeComponent(out_, entry, explanation_.paths());
    out_.line(entry.component.name + ": " + Explanation::summary(entry) + ".");
    for (const BString& problem : entry.plan.problems) out_.line("  " + problem.narrow());
  }

  void run(const std::string& where, const ComponentPlan& entry, const PlannedRun& run) {
    if (json_) return writeRun(out_, entry.component, run, explanation_.paths());
    out_.line(where + explanation_.subject(run) + ": " + reasonFor(run, explanation_.paths()) + ".");
  }

  LineWriter& out_;
  bool json_;
  const Explanation& explanation_;
};

}  // namespace

ExitCode explain(Session& session, OpenProject& project, const std::string& name) {
  const Explanation explanation(project);
  Words words(session, explanation);
  if (name.empty()) {
    words.components(explanation.all(session.options().verbose));
    return session.finish();
  }
  if (const auto named = explanation.ofComponent(name); !named.empty()) {
    words.components(named);
    return session.finish();
  }
  const BString path = explanation.paths().toProject(name);
  if (const auto found = explanation.ofFile(path); !found.empty()) {
    words.file(found);
  } else if (const auto unused = explanation.ofUnused(name, path)) {
    session.output().line(*unused);
  } else {
    throw Failure(name + " is no component of the project, nor a file that a build of it looks at." +
                  suggestion(name, explanation.names(), "names"));
  }
  return session.finish();
}

}  // namespace forgeyard::console
