#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workbench/plan/build_plan.h"
#include "workbench/project/open_project.h"
#include "workbench/project/project_paths.h"

namespace forgeyard::workbench {

// A component of a plan with those of its runs that are asked for. Borrowed from the Explanation.
struct ExplainedComponent {
  const ComponentPlan* entry;
  std::vector<const PlannedRun*> runs;
};

// Why the next build would or would not run tools, for the whole project or for what a name means. Runs
// nothing and stores nothing.
class Explanation {
 public:
  // Borrows the project. Throws a Failure.
  explicit Explanation(OpenProject& project);

  const ProjectPaths& paths() const { return paths_; }

  // Every component, with the runs that are out of date, or with all of them.
  std::vector<ExplainedComponent> all(bool upToDateToo) const;
  // The components of that name, with all their runs.
  std::vector<ExplainedComponent> ofComponent(const std::string& name) const;
  // The runs that have to do with the file: as what goes in, as what comes out, or as what is read beside. A
  // component that takes the file and runs nothing for it comes without runs.
  std::vector<ExplainedComponent> ofFile(const BString& name) const;
  // What there is to say of a folder, or of a file that no component takes: a sentence. Nothing for what the
  // project doesn't know.
  std::optional<std::string> ofUnused(const std::string& name, const BString& path) const;
  // All that can be asked for, sorted.
  std::vector<std::string> names() const;

  // A component in words: "would run for 2 of 3 files".
  static std::string summary(const ComponentPlan& entry);
  // What a run is about: its file, or else what it makes.
  std::string subject(const PlannedRun& run) const;

 private:
  bool concerns(const PlannedRun& run, const ComponentPlan& entry, const BString& name) const;
  std::vector<BString> dependenciesOf(const BString& file) const;
  bool dependsOn(const BString& file, const BString& name) const;

  OpenProject& project_;
  ProjectPlan plan_;
  ProjectPaths paths_;
};

}  // namespace forgeyard::workbench
