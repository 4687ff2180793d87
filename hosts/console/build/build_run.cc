#include "hosts/console/build/build_run.h"

#include <unistd.h>

#include <cstring>

#include "hosts/console/base/report.h"
#include "hosts/console/build/build_display.h"
#include "hosts/console/build/stop_signals.h"
#include "hosts/console/build/tool_processes.h"
#include "hosts/console/session/session.h"
#include "platform/com/connection_point.h"
#include "platform/storage/records/persist.h"
#include "workbench/base/failure.h"
#include "workbench/project/components.h"
#include "workbench/project/configurations.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

// Lets the main loop end behind the run's last lines, which come after the event.
class EndOfRun final : public ComObject<IBuildToolE> {
 public:
  explicit EndOfRun(Apartment& apartment) : apartment_(apartment) {}

  bool hasEnded() const { return ended_; }

  HRESULT OnBuildStart(e_task, std::int32_t*) override { return S_OK; }
  HRESULT OnBuildEnd() override {
    ended_ = true;
    return guard([&] { apartment_.post([&apartment = apartment_] { apartment.quit(); }); });
  }

 private:
  Apartment& apartment_;
  bool ended_ = false;
};

// Answers the user's wishes to stop, each one more urgently.
class Stopper {
 public:
  explicit Stopper(Session& session) : session_(session) {
    before_ = session_.setInterrupt(&signals_);
    session_.loop().watch(&signals_, [this] { taken(); });
  }
  Stopper(const Stopper&) = delete;
  Stopper& operator=(const Stopper&) = delete;
  ~Stopper() {
    session_.loop().unwatch(&signals_);
    // Posted answers must not outlive this object.
    static_cast<void>(session_.apartment().pumpPending());
    session_.setInterrupt(before_);
  }

  bool wasAsked() const { return count_ > 0; }
  // Runs the module's own command; it is disabled, and does nothing, when no run is on.
  void stopRun() {
    ignore(guard([&] { static_cast<void>(session_.host().commands().run(u"ProjectStopBuild")); }));
  }

 private:
  // Inside of the loop's wait: the work is left to a call.
  void taken() {
    while (signals_.take()) session_.apartment().post([this] { answer(); });
  }
  void answer() {
    switch (++count_) {
      case 1:
        if (!session_.options().quiet) complain("Stopping. Once more ends the tools at once.");
        return stopRun();
      case 2:
        return killTools();
      default:
        session_.output().setFooter({});
        session_.output().flush();
        ::_exit(static_cast<int>(ExitCode::Stopped));
    }
  }

  Session& session_;
  StopSignals signals_;
  const Waitable* before_ = nullptr;
  int count_ = 0;
};

bool hasLearnt(IProject& project) {
  for (const auto& configuration : configurationsOf(project)) {
    const Ref<IPersistStream> persist = configuration.as<IPersistStream>();
    if (persist && persist->IsDirty() == S_OK) return true;
  }
  for (const Component& component : componentsOf(project)) {
    const Ref<IPersistStorage> persist = component.object.as<IPersistStorage>();
    if (persist && persist->IsDirty() == S_OK) return true;
  }
  return false;
}

void start(Session& session, std::u16string_view name) {
  CommandOutcome outcome = CommandOutcome::Unknown;
  const std::string what = BString(name).narrow();
  require(guard([&] { outcome = session.host().commands().run(name); }), "The command " + what + " failed");
  if (outcome == CommandOutcome::Unknown) throw Failure("The module has no command " + what + ".");
  if (outcome == CommandOutcome::Disabled) throw Failure("The command " + what + " can't be run now.");
}

bool isBuilding(Session& session) {
  std::int32_t building = 0;
  check(session.tool().get_Building(&building));
  return building != 0;
}

// Serves the run until it is over. Standard output that breaks stops it.
void serveRun(Session& session, Stopper& stopper) {
  session.loop().setOnOutputLost([&] { session.apartment().post([&] { stopper.stopRun(); }); });
  session.apartment().run();
  session.loop().setOnOutputLost(nullptr);
}

}  // namespace

ExitCode lastResult(Session& session) {
  e_btr result = E_BTR_ERROR;
  const Ref<IBuildRunResult> run = query<IBuildRunResult>(&session.tool());
  if (!run) throw Failure("The module does not tell how the build ended.");
  check(run->get_LastResult(&result));
  if (result == E_BTR_STOPPED) return ExitCode::Stopped;
  return result == E_BTR_COMPLETED ? ExitCode::Success : ExitCode::BuildErrors;
}

const char* resultWord(ExitCode result) {
  return result == ExitCode::Success ? "OK" : result == ExitCode::Stopped ? "STOPPED" : "ERRORS";
}

CommandEnd runCommand(Session& session, std::u16string_view command) {
  Stopper stopper(session);
  const auto end = make<EndOfRun>(session.apartment());
  Advice advice;
  check(advice.connect<IBuildToolE>(&session.tool(), end.get()));
  try {
    start(session, command);
  } catch (const Failure&) {
    stopper.stopRun();
    throw;
  }
  // A sink may have refused the build.
  if (!end->hasEnded() && !isBuilding(session)) return {};
  serveRun(session, stopper);
  session.waitForThreads();
  return {lastResult(session), stopper.wasAsked()};
}

namespace {

void storeWhatWasLearnt(OpenProject& project) {
  if (!hasLearnt(project.project())) return;
  if (project.isIncomplete())
    return complain(project.file().host + " is damaged; what the build learnt is not stored.");
  project.save();
}

}  // namespace

ExitCode runBuild(Session& session, OpenProject& project, std::u16string_view command) {
  project.requireConsentIfIncomplete("Build what is left?");
  project.requireSettings();
  ExitCode result = ExitCode::Failure;
  {
    const ActiveFor active(project.project(), project.configuration());
    BuildDisplay display(session, project, command);
    const CommandEnd end = runCommand(session, command);
    if (!end.result) throw Failure("The build was not started.");
    result = end.stopAsked ? ExitCode::Stopped : *end.result;
    display.end(result);
  }
  storeWhatWasLearnt(project);
  return session.finish(result);
}

}  // namespace forgeyard::console
