#pragma once

#include "hosts/console/base/exit_code.h"
#include "hosts/console/base/options.h"
#include "hosts/console/base/report.h"
#include "hosts/console/services/console_host.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/session/console_loop.h"
#include "workbench/session/session.h"

namespace forgeyard::console {

// The terminal's part of a session, which is there before the module's objects are made and after they have
// gone.
class TerminalPart {
 protected:
  explicit TerminalPart(const Options& options) : console_(make<ConsoleHost>(standardOutput(), options)) {}
  TerminalPart(const TerminalPart&) = delete;
  TerminalPart& operator=(const TerminalPart&) = delete;
  ~TerminalPart() { standardOutput().flush(); }

  // Hands the loop on to the apartment and keeps a pointer to it.
  std::unique_ptr<MessageLoop> makeLoop();

  Ref<ConsoleHost> console_;
  ConsoleLoop* loop_ = nullptr;  // the apartment's
};

// The workbench at a terminal: the options of the command line, standard output, and the user's ways to stop.
class Session final : private TerminalPart, public workbench::Session {
 public:
  // Borrows the options. Throws a Failure that says what is missing.
  explicit Session(const Options& options);
  ~Session();

  const Options& options() const { return options_; }
  LineWriter& output() { return standardOutput(); }
  ConsoleLoop& loop() { return *loop_; }
  ConsoleHost& host() const { return *console_; }
  // What the user says stop with: output that is stuck gives way to it. Borrowed until the next call; null
  // for none. Returns the one before.
  const Waitable* setInterrupt(const Waitable* interrupt);
  // Whether the user has said stop, and nobody has answered yet.
  bool isInterrupted() const { return interrupt_ && interrupt_->isSignalled(); }

  // Sends off what was written. The exit code, or another one if standard output could not take it.
  ExitCode finish(ExitCode code = ExitCode::Success) { return finishOutput(output(), code); }

 private:
  const Options& options_;
  const Waitable* interrupt_ = nullptr;
};

}  // namespace forgeyard::console
