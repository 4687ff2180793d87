// why and status: what the next build would do.

#include "hosts/console/commands/command.h"
#include "hosts/console/plan/status.h"
#include "hosts/console/plan/why.h"
#include "hosts/console/session/session.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

ExitCode why(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  return explain(session, project, invocation.text("NAME"));
}

ExitCode status(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  return showStatus(session, project);
}

constexpr std::array kCommands{
    Command{"why",
            "Say what the next build would run and why; nothing is run",
            {{{Kind::OptionalText, "NAME", "",
               "a component, or a file: a source, a header, something that is made; left out: all that\n"
               "would run, with -v all files",
               Completes::ComponentOrSourceFile}}},
            why},
    Command{"status",
            "Show the components with inputs, outputs and what is out of date, and what is missing",
            {},
            status},
};

}  // namespace

std::span<const Command> planCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
