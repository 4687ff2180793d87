#pragma once

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "model/connections/connection.h"

namespace forgeyard {

// An index over the connections of a project: which component feeds which. Owned by the project's collection
// of connections, which brings it up to date before each question. Borrows the connections and their ends.
// Main thread only.
class ConnectionGraph {
 public:
  // Brings the index up to date with `connections`; does nothing if no connection has changed since.
  void follow(const std::vector<Ref<CConnection>>& connections);
  // The collection has gained or lost one connection and `follow` was called just before.
  void add(CConnection& connection);
  void remove(CConnection& connection);

  // The first connection that begins at the component, or null.
  CConnection* firstFrom(IUnknown* component) const;
  bool joined(IUnknown* from, IUnknown* to) const;
  // Whether the walk from `to` downstream, in the order of the ids, meets a component a second time or `from`
  // at all. Throws StatusError.
  bool reachedTwice(IComponent* from, IComponent* to) const;
  // Whether the component is on a circle of connections or downstream of one.
  bool fedByCircle(IUnknown* component);

 private:
  // By the identity of the components; connections in order of creation.
  using Edges = std::unordered_map<IUnknown*, std::vector<CConnection*>>;

  const std::vector<CConnection*>& from(IUnknown* identity) const;
  void findCircles();

  std::uint64_t generation_ = 0;
  Edges outgoing_;
  bool circlesKnown_ = false;
  std::unordered_set<IUnknown*> circular_;  // on a circle or downstream of one, if circlesKnown_
};

}  // namespace forgeyard
