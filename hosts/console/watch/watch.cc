#include "hosts/console/watch/watch.h"

#include <chrono>
#include <optional>
#include <utility>

#include "hosts/console/base/report.h"
#include "hosts/console/build/build_run.h"
#include "hosts/console/build/stop_signals.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/session/session.h"
#include "hosts/console/watch/closed_output.h"
#include "hosts/console/watch/directory_watch.h"
#include "workbench/base/failure.h"
#include "workbench/base/words.h"
#include "workbench/project/workspace.h"
#include "workbench/watch/file_states.h"
#include "workbench/watch/rewritten_files.h"
#include "workbench/watch/watched_files.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// Editors and version control write several files, each in several steps: all is quiet for so long before a
// look is taken, but for no longer than the second.
constexpr milliseconds kQuiet{150};
constexpr milliseconds kLongestBurst{2000};
// How often files are looked at that the system doesn't tell about, or a project that can't be opened.
constexpr milliseconds kLook{1000};
// How many builds follow each other at once, each for what has changed during the one before.
constexpr int kMostAtOnce = 3;

std::int64_t nowInNanoseconds() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

// Files as they stand from some moment on.
struct Look {
  explicit Look(const FileStates::Paths& paths) : states(paths) {}

  // With files that are known only now. Those that were written since count as changed.
  FileStates extendedTo(const FileStates::Paths& paths) const {
    return states.extendedTo(FileStates(paths), time);
  }

  std::int64_t time = nowInNanoseconds();
  FileStates states;
};

class Watcher {
 public:
  Watcher(const Options& options, const std::string& project)
      : options_(options), project_(project), files_{project, Registry::defaultFile()} {
    options_.project = project;
  }

  ExitCode run();

 private:
  // What ends a wait.
  enum class Woken { ToEnd, ByChange, ByTime };
  // False when the project can't be opened now.
  bool round();
  bool tryRound();
  void build(Session& session, OpenProject& project, const Look& start);
  bool projectHasChanged() const;
  bool hasChanged() const;
  bool changedMeanwhile();
  // False when it is time to end.
  bool waitForChange();
  bool waitForQuiet(DirectoryWatch& watch);
  Woken sleep(milliseconds timeout, const DirectoryWatch* watch = nullptr);
  void tellWaiting();
  ExitCode end() const;

  Options options_;
  std::string project_;
  FileStates::Paths files_;  // the project and the registry
  StopSignals signals_;
  ClosedOutput closed_;
  FileStates states_;  // of all that counts but those two, as the last build found it
  FileStates projectState_;
  FileStates::Paths paths_;  // of states_
  RewrittenFiles rewritten_;
  int atOnce_ = 0;  // builds for what had changed during the one before
  std::string lastFailure_;
  bool built_ = false;
  bool told_ = false;
  ExitCode result_ = ExitCode::Success;
};

void Watcher::build(Session& session, OpenProject& project, const Look& start) {
  ProjectPlan plan = planOf(project, E_TASK_BUILD);
  paths_ = watchedFiles(project, plan);
  states_ = start.extendedTo(paths_);
  result_ = ExitCode::Success;
  if (built_ && plan.needed() == 0 && !plan.hasProblems()) return;
  result_ = runBuild(session, project, u"ProjectBuild");
  built_ = true;
  // A yes to building what is left of a damaged project holds for all builds.
  if (project.isIncomplete()) options_.yes = true;
  if (project.wasSaved()) projectState_ = FileStates(files_);
  const Look behind(paths_);
  plan = planOf(project, E_TASK_BUILD);
  // What the build has learnt of dependencies counts too.
  paths_ = watchedFiles(project, plan);
  // Where nothing is left to do, what has changed since the start is in it.
  states_ = (plan.needed() == 0 ? behind : start).extendedTo(paths_);
}

bool Watcher::round() {
  // Ahead of all that is decided by it.
  const Look start(paths_);
  states_ = start.states;
  projectState_ = FileStates(files_);
  rewritten_.look();
  Session session(options_);
  std::optional<OpenProject> project;
  try {
    project.emplace(session);
  } catch (const Failure& failure) {
    if (!built_) throw;
    // Another command has it, or it is being replaced: no reason to end.
    if (lastFailure_ != failure.what()) complain(failure.what());
    lastFailure_ = failure.what();
    return false;
  }
  lastFailure_.clear();
  build(session, *project, start);
  return true;
}

// What keeps the first build from beginning ends the command. A later one waits for the change that mends it.
bool Watcher::tryRound() {
  try {
    return round();
  } catch (const Failure& failure) {
    if (!built_ && !projectHasChanged()) throw;
    complain(failure.what());
    return true;
  }
}

Watcher::Woken Watcher::sleep(milliseconds timeout, const DirectoryWatch* watch) {
  standardOutput().flush();
  const auto fired =
      watch ? waitAny({&signals_, &closed_, watch}, timeout) : waitAny({&signals_, &closed_}, timeout);
  if (!fired) return Woken::ByTime;
  return *fired < 2 ? Woken::ToEnd : Woken::ByChange;
}

bool Watcher::waitForQuiet(DirectoryWatch& watch) {
  const auto end = Clock::now() + kLongestBurst;
  for (FileStates last(paths_); Clock::now() < end;) {
    watch.clear();
    const Woken woken = sleep(kQuiet, &watch);
    if (woken == Woken::ToEnd) return false;
    if (woken == Woken::ByChange) continue;
    if (watch.isComplete()) return true;
    FileStates now(paths_);
    if (now.changedSince(last).empty()) return true;
    last = std::move(now);
  }
  return true;
}

bool Watcher::projectHasChanged() const {
  return !FileStates(files_).changedSince(projectState_).empty();
}

bool Watcher::hasChanged() const {
  return projectHasChanged() || !FileStates(paths_).changedSince(states_).empty();
}

// Whether there is a reason to build again at once: something has changed since the build took a look at it.
// What its own tools change each time must not keep it going for ever.
bool Watcher::changedMeanwhile() {
  const FileStates now(paths_);
  FileStates::Paths changed = now.changedSince(states_);
  states_ = now;
  rewritten_.takeFrom(changed);
  if (!changed.empty() && ++atOnce_ < kMostAtOnce) return true;
  atOnce_ = 0;
  for (const std::string& path : changed)
    complain(path + " changes in every build. That starts no further ones.");
  rewritten_.overlook(changed);
  return false;
}

bool Watcher::waitForChange() {
  FileStates::Paths all = paths_;
  all.insert(files_.begin(), files_.end());
  bool quiet = false;
  for (bool first = true;; first = false) {
    // Ahead of the look, so that no change falls between the two, and anew for each, since directories come
    // and go.
    DirectoryWatch watch(all);
    if (first && changedMeanwhile()) return waitForQuiet(watch);
    if (hasChanged()) return quiet || waitForQuiet(watch);
    tellWaiting();
    const Woken woken = sleep(watch.isComplete() ? milliseconds(-1) : kLook, &watch);
    if (woken == Woken::ToEnd) return false;
    quiet = woken == Woken::ByChange;
    if (quiet && !waitForQuiet(watch)) return false;
  }
}

void Watcher::tellWaiting() {
  if (told_ || options_.quiet) return;
  told_ = true;
  standardOutput().flush();
  complain("Watching " + counted(paths_.size(), "file") + " of " + project_ + ". Ctrl-C ends.");
}

ExitCode Watcher::end() const {
  switch (standardOutput().state()) {
    case LineWriter::State::Closed:
      return ExitCode::OutputClosed;
    case LineWriter::State::Failed:
      return ExitCode::Failure;
    default:
      return closed_.isSignalled() ? ExitCode::OutputClosed : ExitCode::Stopped;
  }
}

ExitCode Watcher::run() {
  for (;;) {
    const bool opened = tryRound();
    if (result_ == ExitCode::Stopped || standardOutput().state() != LineWriter::State::Open) return end();
    if (opened ? !waitForChange() : sleep(kLook) == Woken::ToEnd) return end();
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
