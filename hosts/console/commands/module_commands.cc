// register and unregister: the module in the user's registry.

#include <unistd.h>

#include "hosts/console/commands/command.h"
#include "hosts/console/session/session.h"

namespace forgeyard::console {

namespace {

// Neither starts a session, which would enter missing classes by itself.
ExitCode change(const Invocation& invocation, HRESULT (Module::*operation)() const, const std::string& done,
                const std::string& failure) {
  LineWriter out(STDOUT_FILENO);
  const Module module(openRegistry());
  require((module.*operation)(), failure + " in the registry " + Registry::defaultFile());
  if (!invocation.options().quiet) out.line(module.path() + done + Registry::defaultFile());
  return finishOutput(out, ExitCode::Success);
}

ExitCode registerModule(const Invocation& invocation) {
  return change(invocation, &Module::registerServer, " is registered in ", "The classes can't be entered");
}

ExitCode unregisterModule(const Invocation& invocation) {
  return change(invocation, &Module::unregisterServer, " is no longer registered in ",
                "The classes can't be removed");
}

constexpr std::array kCommands{
    Command{"register",
            "Enter the module's classes into your registry; a first start does it by itself",
            {},
            registerModule},
    Command{"unregister",
            "Take the module's classes out of your registry; what else stands in it stays",
            {},
            unregisterModule},
};

}  // namespace

std::span<const Command> moduleCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
