// connect and disconnect.

#include "hosts/console/commands/command.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/project/components.h"
#include "workbench/project/connections.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

ExitCode connect(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  const Component from = findComponent(project.project(), invocation.text("FROM"));
  const Component to = findComponent(project.project(), invocation.text("TO"));
  if (from.id == to.id) throw Failure(from.name + " can't feed itself.");
  if (connectionBetween(project.project(), from, to))
    throw Failure(from.name + " is connected to " + to.name + " already.");
  addConnection(project.project(), from, to);
  project.save();
  return ExitCode::Success;
}

ExitCode disconnect(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  const Component from = findComponent(project.project(), invocation.text("FROM"));
  const Component to = findComponent(project.project(), invocation.text("TO"));
  const Ref<IConnection> connection = connectionBetween(project.project(), from, to);
  if (!connection) {
    const bool turned = static_cast<bool>(connectionBetween(project.project(), to, from));
    throw Failure(from.name + " is not connected to " + to.name + "." +
                  (turned ? " The connection runs from " + to.name + " to " + from.name + "." : ""));
  }
  removeConnection(project.project(), *connection);
  project.save();
  return ExitCode::Success;
}

constexpr std::array kCommands{
    Command{"connect",
            "Let the output of one component feed another",
            {{{Kind::Text, "FROM", "", "the component that gives its files", Completes::Component},
              {Kind::Text, "TO", "", "the component that takes them", Completes::Component}}},
            connect},
    Command{"disconnect",
            "Take such a connection away",
            {{{Kind::Text, "FROM", "", "the component that gives its files", Completes::Component},
              {Kind::Text, "TO", "", "the component that takes them", Completes::Component}}},
            disconnect},
};

}  // namespace

std::span<const Command> connectionCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
