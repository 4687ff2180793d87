// folder add, component add, list and remove.

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/console/commands/command.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/project/components.h"
#include "workbench/project/connections.h"
#include "workbench/project/new_component.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

const ComponentKind& toolKind(const std::string& name) {
  std::vector<std::string> names;
  for (const ComponentKind& kind : componentKinds()) {
    if (kind.name == kFolderKind) continue;
    if (kind.name == name) return kind;
    names.emplace_back(kind.name);
  }
  if (name == kFolderKind) throw Failure("A folder is made with: forgeyard folder add NAME");
  throw Failure("There is no kind of component " + name + "." + suggestion(name, names, "kinds"));
}

ExitCode makeFolder(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  const std::string& name = invocation.text("NAME");
  requireFreeName(project.project(), name);
  addFolder(project, name, invocation.text("--filter"));
  project.save();
  return ExitCode::Success;
}

ExitCode makeTool(const Invocation& invocation) {
  const ComponentKind& kind = toolKind(invocation.text("KIND"));
  Session session(invocation.options());
  OpenProject project(session);
  const std::string& name = invocation.text("NAME");
  requireFreeName(project.project(), name);
  addTool(project, kind, name);
  project.save();
  return ExitCode::Success;
}

std::vector<std::string> sinksOf(const Component& component, const std::vector<Component>& all,
                                 const std::vector<Ref<IConnection>>& connections) {
  std::vector<std::string> names;
  for (const auto& connection : connections) {
    Ref<IComponent> from;
    Ref<IComponent> to;
    check(connection->get_From(&from));
    check(connection->get_To(&to));
    if (!sameObject(from.get(), component.object.get())) continue;
    const auto sink = std::find_if(all.begin(), all.end(), [&](const Component& candidate) {
      return sameObject(candidate.object.get(), to.get());
    });
    if (sink != all.end()) names.push_back(sink->name);
  }
  return names;
}

void pad(std::string& text, std::size_t width) {
  if (text.size() < width) text.resize(width, ' ');
}

ExitCode listComponents(const Invocation& invocation) {
  Session session(invocation.options());
  const OpenProject project(session);
  const std::vector<Component> all = componentsOf(project.project());
  const std::vector<Ref<IConnection>> connections = connectionsOf(project.project());
  for (const Component& component : all) {
    const std::vector<std::string> sinks = sinksOf(component, all, connections);
    if (session.options().json) {
      writeObject(session.output(), "component",
                  {{"component", component.name},
                   {"id", component.id},
                   {"kind", component.kindName()},
                   {"feeds", sinks}});
      continue;
    }
    std::string line = "#" + std::to_string(component.id);
    pad(line, 5);
    line += component.kindName();
    pad(line, 13);
    session.output().line(line + component.name + (sinks.empty() ? "" : " -> " + enumeration(sinks)));
  }
  return session.finish();
}

ExitCode removeComponent(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  const Component component = findComponent(project.project(), invocation.text("NAME"));
  const std::size_t before = componentsOf(project.project()).size();
  require(project.project().DeleteComponent(component.object.get()), component.name + " can't be removed");
  if (componentsOf(project.project()).size() == before) {
    // The user said no; so does a question that nobody could answer, and that is no success.
    return session.host().frame().refusedForWantOfTerminal() ? ExitCode::Failure : ExitCode::Success;
  }
  project.save();
  return ExitCode::Success;
}

constexpr const char* kNameHelp = "its name, or \"#ID\" as \"component list\" shows it";

constexpr std::array kCommands{
    Command{"folder add",
            "Make a folder for source files",
            {{{Kind::Text, "NAME", "", "its name, unlike that of any other component"},
              {Kind::Option, "--filter", "LIST", "extensions of the files that belong here: \"c;h\""}}},
            makeFolder},
    Command{"component add",
            "Make a component that runs a tool",
            {{{Kind::Text, "KIND", "", "cmdline (a command of your own), cc (compiler), asm or linker",
               Completes::ComponentKind},
              {Kind::Text, "NAME", "", "its name, unlike that of any other component"}}},
            makeTool},
    Command{"component list", "Show the components and what each one feeds", {}, listComponents},
    Command{"component remove",
            "Remove a component and its connections; asks first",
            {{{Kind::Text, "NAME", "", kNameHelp, Completes::Component}}},
            removeComponent},
};

}  // namespace

std::span<const Command> componentCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
