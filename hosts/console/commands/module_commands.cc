// register, unregister and history: the module itself.

#include <charconv>
#include <limits>

#include "hosts/console/commands/command.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/session/history_report.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

// Neither starts a session, which would enter missing classes by itself.
ExitCode change(const Invocation& invocation, HRESULT (Module::*operation)() const, const std::string& done,
                const std::string& failure) {
  LineWriter& out = standardOutput();
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

std::int32_t versionIn(const Invocation& invocation, const char* option) {
  const std::string& text = invocation.text(option);
  std::int32_t version = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, version);
  if (error != std::errc() || stop != end || version < 0)
    throw Failure("\"" + text + "\" is no version for " + option + ": that is a number from 0.");
  return version;
}

ExitCode showHistory(const Invocation& invocation) {
  HistoryWish wish{invocation.text("CLASS"), invocation.text("--key")};
  if (invocation.has("--from") || invocation.has("--to")) {
    wish.first = invocation.has("--from") ? versionIn(invocation, "--from") : 0;
    wish.last =
        invocation.has("--to") ? versionIn(invocation, "--to") : std::numeric_limits<std::int32_t>::max();
  }
  Session session(invocation.options());
  reportHistory(session, wish);
  return session.finish();
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
    Command{"history",
            "Show what has changed in the module's classes, by version",
            {{{Kind::OptionalText, "CLASS", "", "this one and those below it: Project, or KV.Project",
               Completes::Class},
              {Kind::Option, "--key", "KEY", "entries of this kind alone, exactly: \"Beta Fix\""},
              {Kind::Option, "--from", "N", "of this version and later ones"},
              {Kind::Option, "--to", "N", "of this version and earlier ones"}}},
            showHistory},
};

}  // namespace

std::span<const Command> moduleCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
