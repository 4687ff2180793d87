#include "model/connections/connection_graph.h"

#include <algorithm>
#include <set>

namespace forgeyard {

namespace {

IUnknown* identityOf(IUnknown* object) {
  return query<IUnknown>(object).get();
}

// Components that wait for their turn: by id, then in the order in which the walk met them.
class PendingComponents {
 public:
  bool empty() const { return order_.empty(); }
  void insert(IUnknown* identity, IComponent& component) {
    if (!members_.insert(identity).second) return;
    std::int32_t id = 0;
    check(component.get_Id(&id));
    order_.insert({id, met_++, identity});
  }
  IUnknown* takeFirst() {
    IUnknown* first = order_.begin()->identity;
    order_.erase(order_.begin());
    members_.erase(first);
    return first;
  }

 private:
  struct Place {
    std::int32_t id;
    std::size_t met;
    IUnknown* identity;
    auto operator<=>(const Place&) const = default;
  };
  std::set<Place> order_;
  std::unordered_set<IUnknown*> members_;
  std::size_t met_ = 0;
};

}  // namespace

void ConnectionGraph::follow(const std::vector<Ref<CConnection>>& connections) {
  if (generation_ == CConnection::generation()) return;
  generation_ = CConnection::generation();
  outgoing_.clear();
  circlesKnown_ = false;
  for (const Ref<CConnection>& connection : connections) add(*connection);
}

void ConnectionGraph::add(CConnection& connection) {
  generation_ = CConnection::generation();
  if (!connection.from() || !connection.to()) return;
  outgoing_[connection.fromIdentity()].push_back(&connection);
  // An edge that closes no circle is downstream of one only if there is one.
  if (!circular_.empty()) circlesKnown_ = false;
}

void ConnectionGraph::remove(CConnection& connection) {
  generation_ = CConnection::generation();
  if (const auto edges = outgoing_.find(connection.fromIdentity()); edges != outgoing_.end()) {
    std::erase(edges->second, &connection);
  }
  if (!circular_.empty()) circlesKnown_ = false;
}

const std::vector<CConnection*>& ConnectionGraph::from(IUnknown* identity) const {
  static const std::vector<CConnection*> none;
  const auto found = outgoing_.find(identity);
  return found == outgoing_.end() ? none : found->second;
}

CConnection* ConnectionGraph::firstFrom(IUnknown* component) const {
  const auto& edges = from(identityOf(component));
  return edges.empty() ? nullptr : edges.front();
}

bool ConnectionGraph::joined(IUnknown* first, IUnknown* second) const {
  const auto& edges = from(identityOf(first));
  IUnknown* const end = identityOf(second);
  return std::any_of(edges.begin(), edges.end(),
                     [end](const CConnection* edge) { return edge->toIdentity() == end; });
}

bool ConnectionGraph::reachedTwice(IComponent* first, IComponent* second) const {
  std::unordered_set<IUnknown*> seen{identityOf(first)};
  PendingComponents pending;
  pending.insert(identityOf(second), *second);
  while (!pending.empty()) {
    IUnknown* const next = pending.takeFirst();
    if (!seen.insert(next).second) return true;
    for (const CConnection* edge : from(next)) pending.insert(edge->toIdentity(), *edge->to());
  }
  return false;
}

bool ConnectionGraph::fedByCircle(IUnknown* component) {
  if (!circlesKnown_) findCircles();
  return !circular_.empty() && circular_.contains(identityOf(component));
}

// Takes away components that nothing feeds, over and over. What remains is fed by a circle.
void ConnectionGraph::findCircles() {
  std::unordered_map<IUnknown*, std::size_t> feeds;
  for (const auto& [component, edges] : outgoing_) {
    feeds.try_emplace(component, 0);
    for (const CConnection* edge : edges) ++feeds[edge->toIdentity()];
  }
  std::vector<IUnknown*> free;
  for (const auto& [component, count] : feeds) {
    if (count == 0) free.push_back(component);
  }
  while (!free.empty()) {
    IUnknown* const next = free.back();
    free.pop_back();
    feeds.erase(next);
    for (const CConnection* edge : from(next)) {
      if (--feeds[edge->toIdentity()] == 0) free.push_back(edge->toIdentity());
    }
  }
  circular_.clear();
  for (const auto& [component, count] : feeds) circular_.insert(component);
  circlesKnown_ = true;
}

}  // namespace forgeyard
