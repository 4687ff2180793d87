#include "workbench/project/connections.h"

#include "workbench/base/failure.h"
#include "workbench/project/collections.h"

namespace forgeyard::workbench {

namespace {

Ref<IConnections> connectionList(IProject& project) {
  Ref<IConnections> connections;
  check(project.get_Connections(&connections));
  return connections;
}

}  // namespace

std::vector<Ref<IConnection>> connectionsOf(IProject& project) {
  return elementsOf<IConnection>(*connectionList(project));
}

Ref<IConnection> connectionBetween(IProject& project, const Component& from, const Component& to) {
  for (const auto& connection : connectionsOf(project)) {
    Ref<IComponent> source;
    Ref<IComponent> sink;
    check(connection->get_From(&source));
    check(connection->get_To(&sink));
    if (sameObject(source.get(), from.object.get()) && sameObject(sink.get(), to.object.get()))
      return connection;
  }
  return nullptr;
}

void addConnection(IProject& project, const Component& from, const Component& to) {
  Ref<IConnection> made;
  if (failed(connectionList(project)->New(from.object.get(), to.object.get(), &made))) {
    throw Failure(from.name + " can't be connected to " + to.name +
                  ": that would close a circle, or two ways that lead from " + to.name + " meet again.");
  }
}

void removeConnection(IProject& project, IConnection& connection) {
  require(connectionList(project)->Delete(&connection), "The connection can't be removed");
}

}  // namespace forgeyard::workbench
