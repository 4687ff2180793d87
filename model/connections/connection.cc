#include "model/connections/connection.h"

#include "typelib/classes.h"

namespace forgeyard {

namespace {

Ref<IComponent> componentOf(IComponents& components, std::int32_t id) {
  Ref<IDispatch> found;
  check(components.get_Item(Variant(id), &found));
  Ref<IComponent> component = found.as<IComponent>();
  if (!component) throw StatusError(E_FAIL);
  return component;
}

std::uint64_t generations = 1;

HRESULT give(const Ref<IComponent>& end, Ref<IComponent>* out) {
  *out = end;
  return end ? S_OK : E_FAIL;
}

}  // namespace

void CConnection::describe(RecordFields& fields, std::int32_t& from, std::int32_t& to) {
  fields.unusedVersion(u"version");
  fields.number(u"from", from);
  fields.number(u"to", to);
}

std::uint64_t CConnection::generation() {
  return generations;
}

void CConnection::setEnds(Ref<IComponent> from, Ref<IComponent> to) {
  from_ = std::move(from);
  to_ = std::move(to);
  fromIdentity_ = from_.as<IUnknown>().get();
  toIdentity_ = to_.as<IUnknown>().get();
  ++generations;
}

HRESULT CConnection::get_From(Ref<IComponent>* out) {
  return give(from_, out);
}

HRESULT CConnection::get_To(Ref<IComponent>* out) {
  return give(to_, out);
}

HRESULT CConnection::Init(IComponent* from, IComponent* to) {
  return guard([&] {
    if (!from || !to) return E_FAIL;
    setEnds(Ref<IComponent>(from), Ref<IComponent>(to));
    if (failed(from->AddSink(to))) return E_FAIL;
    if (succeeded(to->AddSource(from))) return S_OK;
    ignore(from->RemoveSink(to));
    return E_FAIL;
  });
}

HRESULT CConnection::Close() {
  return guard([&] {
    const Ref<IComponent> from = std::exchange(from_, nullptr);
    const Ref<IComponent> to = std::exchange(to_, nullptr);
    ++generations;
    if (!from || !to) return;
    ignore(from->RemoveSink(to.get()));
    ignore(to->RemoveSource(from.get()));
  });
}

HRESULT CConnection::GetClassID(Guid* out) {
  *out = CLSID_Connection;
  return S_OK;
}

HRESULT CConnection::IsDirty() {
  return changed_ ? S_OK : S_FALSE;
}

HRESULT CConnection::Load(IStream* stream) {
  return guard([&] {
    const Ref<IProject> project = project_.lock();
    if (!project) throw StatusError(E_FAIL);
    RecordReader record(stream);
    LoadFields fields(record);
    std::int32_t fromId = 0;
    std::int32_t toId = 0;
    describe(fields, fromId, toId);
    Ref<IComponents> components;
    check(project->get_Components(&components));
    setEnds(componentOf(*components, fromId), componentOf(*components, toId));
    check(from_->AddSink(to_.get()));
    check(to_->AddSource(from_.get()));
    changed_ = false;
  });
}

HRESULT CConnection::Save(IStream* stream, bool clearDirty) {
  return guard([&] {
    if (!from_ || !to_) throw StatusError(E_FAIL);
    std::int32_t fromId = 0;
    std::int32_t toId = 0;
    check(from_->get_Id(&fromId));
    check(to_->get_Id(&toId));
    RecordWriter record(stream);
    SaveFields fields(record);
    describe(fields, fromId, toId);
    if (clearDirty) changed_ = false;
  });
}

}  // namespace forgeyard
