#include "hosts/console/watch/watch.h"

#include <chrono>
#include <optional>
#include <unordered_set>
#include <utility>

#include "hosts/console/base/report.h"
#include "hosts/console/base/words.h"
#include "hosts/console/build/build_run.h"
#include "hosts/console/build/stop_signals.h"
#include "hosts/console/plan/build_plan.h"
#include "hosts/console/project/source_files.h"
#include "hosts/console/project/workspace.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/watch/directory_watch.h"
#include "hosts/console/watch/file_states.h"
#include "platform/files/host_location.h"

namespace forgeyard::console {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// Editors and version control write several files, each in several steps: all is quiet for so long before a
// look is taken, but for no longer than the second.
constexpr milliseconds kQuiet{150};
constexpr milliseconds kLongestBurst{2000};
// How often files are looked at that the system doesn't tell about, or a project that can't be opened.
constexpr milliseconds kLook{1000};

std::int64_t nowInNanoseconds() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

// Host paths of the files in folders, and of all that goes into something without being made by the build.
FileStates::Paths watchedFiles(OpenProject& project, const ProjectPlan& plan) {
  std::unordered_set<BString> read;
  std::unordered_set<BString> made;
  const Ref<IBuildPlan> planner = query<IBuildPlan>(&project.session().tool());
  for (const ComponentPlan& entry : plan.components) {
    made.insert(entry.plan.outputs.begin(), entry.plan.outputs.end());
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

class Watcher {
 public:
  Watcher(const Options& options, const std::string& project) : options_(options), project_(project) {
    options_.project = project;
  }

  ExitCode run();

 private:
  // Nothing: the project can't be opened now.
  std::optional<ExitCode> round();
  std::optional<ExitCode> tryRound();
  void build(OpenProject& project);
  bool hasChanged() const;
  bool changedMeanwhile();
  // False when the user has said stop.
  bool waitForChange();
  bool waitForQuiet(DirectoryWatch& watch);
  void tellWaiting();

  Options options_;
  std::string project_;
  StopSignals signals_;
  FileStates states_;  // of all that counts but the project, as the last build found it
  FileStates projectState_;
  FileStates::Paths paths_;      // of states_
  FileStates::Paths rewritten_;  // those that builds themselves change each time
  bool again_ = false;           // the last build was for what had changed during the one before
  std::string lastFailure_;
  bool built_ = false;
  bool told_ = false;
  ExitCode result_ = ExitCode::Success;
};

void Watcher::build(OpenProject& project) {
  const std::int64_t start = nowInNanoseconds();
  const ProjectPlan before = planOf(project, E_TASK_BUILD);
  const FileStates known(watchedFiles(project, before));
  result_ = ExitCode::Success;
  if (!built_ || before.needed() != 0 || before.hasProblems()) result_ = runBuild(project, u"ProjectBuild");
  built_ = true;
  // What the build has learnt of dependencies counts too.
  paths_ = watchedFiles(project, planOf(project, E_TASK_BUILD));
  const FileStates now(paths_);
  const bool complete = planOf(project, E_TASK_BUILD).needed() == 0;
  states_ = complete ? now : known.extendedTo(now, start);
  // The build itself may have stored it.
  projectState_ = FileStates({project_});
}

std::optional<ExitCode> Watcher::round() {
  Session session(options_);
  std::optional<OpenProject> project;
  try {
    project.emplace(session);
  } catch (const Failure& failure) {
    // Another command has it, or it is being replaced: no reason to end.
    if (lastFailure_ != failure.what()) complain(failure.what());
    lastFailure_ = failure.what();
    return std::nullopt;
  }
  lastFailure_.clear();
  build(*project);
  return result_;
}

// A build that can't be begun waits for the change that mends it.
std::optional<ExitCode> Watcher::tryRound() {
  try {
    return round();
  } catch (const Failure& failure) {
    complain(failure.what());
    states_ = FileStates(paths_);
    projectState_ = FileStates({project_});
    return ExitCode::Failure;
  }
}

bool Watcher::waitForQuiet(DirectoryWatch& watch) {
  const auto end = Clock::now() + kLongestBurst;
  for (;;) {
    watch.clear();
    const auto fired = waitAny({&signals_, &watch}, kQuiet);
    if (fired == std::size_t{0}) return false;
    if (!fired || Clock::now() >= end) return true;
  }
}

bool Watcher::hasChanged() const {
  return !FileStates(paths_).changedSince(states_).empty() ||
         !FileStates({project_}).changedSince(projectState_).empty();
}

// Whether there is a reason to build again at once: something has changed since the build took a look at it.
// What its own tools rewrite each time would keep it going for ever: that is what the second build in a row
// finds changed again.
bool Watcher::changedMeanwhile() {
  const FileStates now(paths_);
  FileStates::Paths changed = now.changedSince(states_);
  std::erase_if(changed, [&](const std::string& path) { return rewritten_.contains(path); });
  states_ = now;
  if (!again_ && !changed.empty()) {
    again_ = true;
    return true;
  }
  if (again_) rewritten_.insert(changed.begin(), changed.end());
  again_ = false;
  return false;
}

bool Watcher::waitForChange() {
  FileStates::Paths all = paths_;
  all.insert(project_);
  // Ahead of the first look, so that no change falls between the two.
  DirectoryWatch watch(all);
  if (changedMeanwhile()) return true;
  while (!hasChanged()) {
    tellWaiting();
    const auto fired = watch.descriptor() < 0
                           ? waitAny({&signals_}, kLook)
                           : waitAny({&signals_, &watch}, watch.isComplete() ? milliseconds(-1) : kLook);
    if (fired == std::size_t{0}) return false;
    if (fired && !waitForQuiet(watch)) return false;
  }
  again_ = false;
  return true;
}

void Watcher::tellWaiting() {
  standardOutput().flush();
  if (told_ || options_.quiet) return;
  told_ = true;
  complain("Watching " + counted(paths_.size(), "file") + " of " + project_ + ". Ctrl-C ends.");
}

ExitCode Watcher::run() {
  for (;;) {
    const std::optional<ExitCode> ended = tryRound();
    if (ended == ExitCode::Stopped || ended == ExitCode::OutputClosed) return *ended;
    if (!ended) {
      if (waitAny({&signals_}, kLook)) return ExitCode::Stopped;
      continue;
    }
    if (!waitForChange()) return ExitCode::Stopped;
  }
}

std::string chosenProject(const Options& options) {
  Session session(options);
  return chosenProjectFile(session).host;
}

}  // namespace

ExitCode watchProject(const Options& options) {
  return Watcher(options, chosenProject(options)).run();
}

}  // namespace forgeyard::console
