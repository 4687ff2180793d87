#include "model/connections/connections.h"

#include <algorithm>
#include <map>

#include "model/enumerate.h"
#include "model/project/project.h"
#include "platform/storage/records/records.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

// Components in a stable order: by id, then by the order in which the walk met them.
class ComponentSet {
 public:
  bool empty() const { return members_.empty(); }
  bool contains(IComponent* component) const { return position(component) != members_.size(); }
  void insert(IComponent* component) {
    if (contains(component)) return;
    std::int32_t id = 0;
    check(component->get_Id(&id));
    const auto behind = std::upper_bound(members_.begin(), members_.end(), id,
                                         [](std::int32_t wanted, const Member& m) { return wanted < m.id; });
    members_.insert(behind, Member{id, component});
  }
  IComponent* takeFirst() {
    IComponent* first = members_.front().component;
    members_.erase(members_.begin());
    return first;
  }

 private:
  struct Member {
    std::int32_t id;
    IComponent* component;
  };
  std::size_t position(IComponent* component) const {
    std::size_t at = 0;
    while (at < members_.size() && !sameObject(members_[at].component, component)) ++at;
    return at;
  }
  std::vector<Member> members_;
};

}  // namespace

WeakRef<IProject> CConnections::weakProject() const {
  return WeakRef<IProject>(static_cast<IProject*>(project_));
}

void CConnections::changed() {
  changed_ = true;
  if (project_) project_->contentsChanged(kProjectConnections);
}

bool CConnections::feedsAnother(IComponent* component) const {
  return std::any_of(list_.begin(), list_.end(),
                     [&](const auto& connection) { return sameObject(connection->from(), component); });
}

namespace {

// Walks upstream in depth, each component once.
class CircleSearch {
 public:
  explicit CircleSearch(const std::vector<Ref<CConnection>>& connections) : connections_(connections) {}

  bool upstreamOf(IComponent* component) {
    if (contains(path_, component)) return true;
    if (contains(clear_, component)) return false;
    path_.push_back(component);
    for (const Ref<CConnection>& connection : connections_) {
      if (sameObject(connection->to(), component) && upstreamOf(connection->from())) return true;
    }
    path_.pop_back();
    clear_.push_back(component);
    return false;
  }

 private:
  static bool contains(const std::vector<IComponent*>& list, IComponent* component) {
    return std::any_of(list.begin(), list.end(),
                       [&](IComponent* entry) { return sameObject(entry, component); });
  }

  const std::vector<Ref<CConnection>>& connections_;
  std::vector<IComponent*> path_;
  std::vector<IComponent*> clear_;
};

}  // namespace

bool CConnections::fedByCircle(IComponent* component) const {
  return CircleSearch(list_).upstreamOf(component);
}

HRESULT CConnections::get_Item(IComponent* lhs, Ref<IConnection>* out) {
  return guard([&] {
    *out = nullptr;
    const auto found = std::find_if(list_.begin(), list_.end(),
                                    [&](const auto& entry) { return sameObject(entry->from(), lhs); });
    if (found == list_.end()) return E_FAIL;
    *out = *found;
    return S_OK;
  });
}

HRESULT CConnections::get_Count(std::int32_t* value) {
  *value = static_cast<std::int32_t>(list_.size());
  return S_OK;
}

HRESULT CConnections::get__NewEnum(Ref<IUnknown>* out) {
  return guard([&] { *out = enumerateObjects(list_); });
}

// Every component reached a second time from the new connection's end refuses it, not only a way back to its
// start: the test errs on the safe side.
bool CConnections::reachedTwice(IComponent* from, IComponent* to) const {
  ComponentSet seen;
  ComponentSet pending;
  seen.insert(from);
  pending.insert(to);
  while (!pending.empty()) {
    IComponent* next = pending.takeFirst();
    if (seen.contains(next)) return true;
    seen.insert(next);
    for (const Ref<CConnection>& connection : list_) {
      if (sameObject(connection->from(), next)) pending.insert(connection->to());
    }
  }
  return false;
}

bool CConnections::stands(IComponent* from, IComponent* to) const {
  return std::any_of(list_.begin(), list_.end(), [&](const auto& entry) {
    return sameObject(entry->from(), from) && sameObject(entry->to(), to);
  });
}

HRESULT CConnections::New(IComponent* from, IComponent* to, Ref<IConnection>* out) {
  return guard([&] {
    if (out) *out = nullptr;
    if (!from || !to || !project_) return E_FAIL;
    if (reachedTwice(from, to) || stands(from, to)) return E_FAIL;
    const auto connection = make<CConnection>(weakProject());
    if (const HRESULT status = connection->Init(from, to); failed(status)) return status;
    list_.push_back(connection);
    if (out) *out = connection;
    changed();
    return S_OK;
  });
}

HRESULT CConnections::Delete(IConnection* connection) {
  return guard([&] {
    const auto found = std::find_if(list_.begin(), list_.end(),
                                    [&](const auto& entry) { return sameObject(entry.get(), connection); });
    if (found == list_.end()) return;
    const Ref<CConnection> gone = *found;
    list_.erase(found);
    ignore(gone->Close());
    changed();
  });
}

void CConnections::deleteAllOf(IUnknown* component) {
  const auto connections = list_;
  for (const Ref<CConnection>& connection : connections) {
    if (sameObject(connection->from(), component) || sameObject(connection->to(), component)) {
      check(Delete(connection.get()));
    }
  }
}

HRESULT CConnections::Close() {
  return guard([&] {
    const auto closing = std::exchange(list_, {});
    for (const Ref<CConnection>& connection : closing) ignore(connection->Close());
  });
}

// Persistence

HRESULT CConnections::GetClassID(Guid* out) {
  *out = GUID_NULL;  // not created by class
  return S_OK;
}

HRESULT CConnections::IsDirty() {
  return changed_ ? S_OK : S_FALSE;
}

HRESULT CConnections::Load(IStream* stream) {
  return guard([&] {
    constexpr std::uint32_t kRecordBytes = 12;
    RecordReader record(stream);
    record.u32();  // version
    for (std::uint32_t left = record.count(kRecordBytes); left > 0; --left) {
      const auto connection = make<CConnection>(weakProject());
      check(connection->Load(stream));
      list_.push_back(connection);
    }
    changed_ = false;
  });
}

HRESULT CConnections::Save(IStream* stream, bool clearDirty) {
  return guard([&] {
    RecordWriter record(stream);
    record.u32(0);
    record.u32(static_cast<std::uint32_t>(list_.size()));
    for (const Ref<CConnection>& connection : list_) check(connection->Save(stream, clearDirty));
    if (clearDirty) changed_ = false;
  });
}

}  // namespace forgeyard
