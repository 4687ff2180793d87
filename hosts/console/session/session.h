#pragma once

#include <optional>

#include "hosts/console/base/options.h"
#include "hosts/console/base/report.h"
#include "hosts/console/services/console_host.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/session/console_loop.h"
#include "hosts/console/session/loaded_objects.h"
#include "hosts/console/session/module.h"
#include "platform/threads/apartment.h"
#include "typelib/buildtool.h"

namespace forgeyard::console {

// The user's registry. Throws a Failure when it can't be read.
Registry openRegistry();

// The module at work: its library loaded, the host's services offered to it, and the objects of its start
// created and sited, the build tool among them. The end goes the same way back. The thread that makes it is
// the main thread of everything.
class Session {
 public:
  // Throws a Failure that says what is missing.
  explicit Session(const Options& options);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const Options& options() const { return options_; }
  const Registry& registry() const { return registry_; }
  LineWriter& output() { return standardOutput(); }
  ConsoleLoop& loop() { return *loop_; }
  Apartment& apartment() const { return **apartment_; }
  ConsoleHost& host() const { return *host_; }
  IBuildTool& tool() const { return *tool_; }
  const LoadedObjects& objects() const { return *objects_; }

  // What the user says stop with: output that is stuck gives way to it. Borrowed until the next call; null
  // for none. Returns the one before.
  const Waitable* setInterrupt(const Waitable* interrupt);
  // Whether the user has said stop, and nobody has answered yet.
  bool isInterrupted() const { return interrupt_ && interrupt_->isSignalled(); }

  // Serves the module's threads until all of them have ended.
  void waitForThreads();
  // Sends off what was written. The exit code, or another one if standard output could not take it.
  ExitCode finish(ExitCode code = ExitCode::Success) { return finishOutput(output(), code); }

 private:
  void unload();

  const Options& options_;
  Registry registry_;
  const Waitable* interrupt_ = nullptr;
  ConsoleLoop* loop_ = nullptr;  // the apartment's
  std::optional<ApartmentScope> apartment_;
  std::optional<Module> module_;
  Ref<ConsoleHost> host_;
  std::optional<LoadedObjects> objects_;
  Ref<IBuildTool> tool_;
};

}  // namespace forgeyard::console
