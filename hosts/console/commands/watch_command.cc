// watch: builds whenever something has changed.

#include "hosts/console/commands/command.h"
#include "hosts/console/watch/watch.h"

namespace forgeyard::console {

namespace {

ExitCode watch(const Invocation& invocation) {
  return watchProject(invocation.options());
}

constexpr std::array kCommands{
    Command{"watch",
            "Build, and again whenever a source, a header or the project changes, until Ctrl-C",
            {},
            watch},
};

}  // namespace

std::span<const Command> watchCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
