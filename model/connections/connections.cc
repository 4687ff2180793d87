#include "model/connections/connections.h"

#include <algorithm>

#include "model/core/enumerate.h"
#include "model/core/project_core.h"
#include "platform/storage/records/records.h"
#include "typelib/classes.h"

namespace forgeyard {

WeakRef<IProject> CConnections::weakProject() const {
  return WeakRef<IProject>(project_ ? &project_->project() : nullptr);
}

void CConnections::changed() {
  changed_ = true;
  if (!project_) return;
  ignore(project_->project().put_Dirty(1));
  project_->notifications().send(kProjectConnections);
}

ConnectionGraph& CConnections::graph() {
  graph_.follow(list_);
  return graph_;
}

bool CConnections::feedsAnother(IComponent* component) {
  return graph().firstFrom(component) != nullptr;
}

bool CConnections::fedByCircle(IComponent* component) {
  return graph().fedByCircle(component);
}

HRESULT CConnections::get_Item(IComponent* lhs, Ref<IConnection>* out) {
  return guard([&] {
    *out = lhs ? Ref<IConnection>(graph().firstFrom(lhs)) : nullptr;
    return *out ? S_OK : E_FAIL;
  });
}

HRESULT CConnections::get_Count(std::int32_t* value) {
  *value = static_cast<std::int32_t>(list_.size());
  return S_OK;
}

HRESULT CConnections::get__NewEnum(Ref<IUnknown>* out) {
  return guard([&] { *out = enumerateObjects(list_); });
}

// Every component that is reached a second time refuses the connection, not only a way back to its start:
// the test errs on the safe side.
HRESULT CConnections::New(IComponent* from, IComponent* to, Ref<IConnection>* out) {
  return guard([&] {
    if (out) *out = nullptr;
    if (!from || !to || !project_) return E_FAIL;
    if (graph().reachedTwice(from, to) || graph().joined(from, to)) return E_FAIL;
    const auto connection = make<CConnection>(weakProject());
    if (const HRESULT status = connection->Init(from, to); failed(status)) return status;
    list_.push_back(connection);
    graph_.add(*connection);
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
    graph();
    list_.erase(found);
    ignore(gone->Close());
    graph_.remove(*gone);
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
    RecordReader record(stream);
    record.u32();  // version
    // A list that is cut short keeps what precedes the cut, so its length isn't checked first.
    for (std::uint32_t left = record.u32(); left > 0; --left) {
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
