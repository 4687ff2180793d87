#pragma once

#include <optional>
#include <string_view>

#include "hosts/console/base/exit_code.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

class Session;

// Runs one of the build tool's commands on the project, in the configuration that the options name, to the
// end of its build run, and then stores what the run has learnt; the configuration that is active in the file
// stays so.
//
// Ctrl-C (and SIGTERM, SIGHUP) stops the run in order, a second one ends the tools at once, a third one the
// program. So does a standard output that nobody reads any more. Throws a Failure when the run could not
// start.
ExitCode runBuild(Session& session, workbench::OpenProject& project, std::u16string_view command);

// What became of a command of the module.
struct CommandEnd {
  std::optional<ExitCode> result;  // of its build run; nothing when it has started none
  bool stopAsked = false;          // the user has said stop meanwhile
};

// Runs the command of that name, and if it starts a build run, serves that to its end, with the user's ways
// to stop it as above. Throws a Failure when there is no such command, or it can't be run now.
CommandEnd runCommand(Session& session, std::u16string_view command);

// How the last build run ended.
ExitCode lastResult(Session& session);
// The same in the module's words: "OK", "ERRORS" or "STOPPED".
const char* resultWord(ExitCode result);

}  // namespace forgeyard::console
