// typelib: what scripts and other programs can reach.

#include <unistd.h>

#include "hosts/console/automation/idl.h"
#include "hosts/console/base/nearest.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/services/line_writer.h"
#include "typelib/type_library.h"

namespace forgeyard::console {

namespace {

using Kind = Parameter::Kind;

std::vector<std::string> linesOf(const std::string& name) {
  if (name.empty()) return libraryLines();
  if (const TypeInfo* type = findInterface(name)) return interfaceLines(*type);
  std::vector<std::string> names;
  for (const TypeInfo* type : typeLibrary()) names.emplace_back(type->name);
  std::string hint = suggestion(name, names, "interfaces");
  if (hint.empty()) hint = " \"forgeyard typelib\" shows all.";
  throw Failure("There is no interface " + name + "." + hint);
}

ExitCode showTypeLibrary(const Invocation& invocation) {
  LineWriter out(STDOUT_FILENO);
  for (const std::string& line : linesOf(invocation.text("INTERFACE"))) out.line(line);
  return finishOutput(out, ExitCode::Success);
}

constexpr std::array kCommands{
    Command{"typelib",
            "Show the interfaces that scripts and programs can use: members, types and one line of help",
            {{{Kind::OptionalText, "INTERFACE", "", "this one alone, in any case: IProject, or project"}}},
            showTypeLibrary},
};

}  // namespace

std::span<const Command> automationCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
