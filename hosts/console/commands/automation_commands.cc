// typelib, script, serve: what scripts and other programs can reach, and how.

#include "hosts/console/commands/command.h"
#include "hosts/console/script/script.h"
#include "hosts/console/serve/server.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/session/session.h"
#include "typelib/type_library.h"
#include "workbench/automation/idl.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/project/configurations.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

using namespace workbench;

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
  LineWriter& out = standardOutput();
  for (const std::string& line : linesOf(invocation.text("INTERFACE"))) out.line(line);
  return finishOutput(out, ExitCode::Success);
}

// The project that -p, -w and -c choose, loaded and active with its configuration; none without them, so that
// a script may begin with nothing.
class ChosenProject {
 public:
  explicit ChosenProject(Session& session) {
    const Options& options = session.options();
    if (options.project.empty() && options.workspace.empty() && options.configuration.empty()) return;
    project_.emplace(session);
    if (!options.configuration.empty()) active_.emplace(project_->project(), project_->configuration());
  }

 private:
  std::optional<OpenProject> project_;
  std::optional<ActiveFor> active_;
};

ExitCode runScript(const Invocation& invocation) {
  Session session(invocation.options());
  const ChosenProject project(session);
  Script script(session);
  const int code = script.run(invocation.text("FILE"), invocation.texts("ARGUMENTS"));
  return session.finish(static_cast<ExitCode>(code));
}

ExitCode serve(const Invocation& invocation) {
  if (!invocation.has("--stdio"))
    throw Failure("How is the client to be reached? forgeyard serve --stdio uses standard input and output.");
  if (invocation.options().json)
    throw Failure("serve --stdio speaks JSON-RPC on standard output; --json has no place there.");
  Session session(invocation.options());
  const ChosenProject project(session);
  ExitCode code = ExitCode::Success;
  {
    Server server(session);
    code = server.run();
  }
  return code == ExitCode::OutputClosed ? code : session.finish(code);
}

constexpr std::array kCommands{
    Command{"typelib",
            "Show the interfaces that scripts and programs can use: members, types and one line of help",
            {{{Kind::OptionalText, "INTERFACE", "", "this one alone, in any case: IProject, or project",
               Completes::Interface}}},
            showTypeLibrary},
    Command{"script",
            "Run a Lua script over the live objects; with -p, -w or -c the project is loaded and active",
            {{{Kind::Text, "FILE", "", "the script; \"-\" for standard input", Completes::File},
              {Kind::Rest, "ARGUMENTS", "", "for the script, options included: its table \"arg\"",
               Completes::File}}},
            runScript},
    Command{"serve",
            "Let another program work with the live objects, by JSON-RPC; with -p, -w or -c the project is "
            "loaded",
            {{{Kind::Flag, "--stdio", "", "requests come on standard input, answers go to standard output"}}},
            serve},
};

}  // namespace

std::span<const Command> automationCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
