#include "model/components/components.h"

#include <algorithm>
#include <string>

#include "model/core/enumerate.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kSubStorage = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;

}  // namespace

HRESULT CComponents::get_Count(std::int32_t* value) {
  *value = static_cast<std::int32_t>(project_->contents().components.size());
  return S_OK;
}

HRESULT CComponents::get_Item(const Variant& id, Ref<IDispatch>* out) {
  return guard([&] {
    *out = nullptr;
    const std::int32_t* wanted = id.get<std::int32_t>();
    if (!wanted) return E_FAIL;
    for (const Ref<IComponent>& component : project_->contents().components) {
      std::int32_t found = 0;
      check(component->get_Id(&found));
      if (found != *wanted) continue;
      *out = component.as<IDispatch>();
      return S_OK;
    }
    return E_FAIL;
  });
}

HRESULT CComponents::get__NewEnum(Ref<IUnknown>* out) {
  return guard([&] { *out = enumerateObjects(project_->contents().components); });
}

HRESULT CComponents::New(IDispatch* component) {
  return guard([&] {
    const Ref<IComponent> created = query<IComponent>(component);
    if (!created) return;
    check(created->SetParent(&project_->project(), project_->services().get()));
    std::int32_t wanted = 0;
    check(created->OnNew(&wanted));
    if (!wanted) return;
    check(created->Init());
    add(*created);
  });
}

HRESULT CComponents::Add(IDispatch* component) {
  return guard([&] {
    const Ref<IComponent> added = query<IComponent>(component);
    if (!added) throw StatusError(E_FAIL);
    add(*added);
  });
}

// The number is spent even if the rest fails: a number is never used twice.
void CComponents::add(IComponent& component) {
  ProjectContents& contents = project_->contents();
  if (!contents.root) throw StatusError(E_FAIL);
  const std::int32_t id = contents.settings.nextComponentId;
  check(component.put_Id(id));
  const BString element = BString::fromNarrow("Component" + std::to_string(id));
  ++contents.settings.nextComponentId;
  makeElement(component, element);
  contents.components.emplace_back(&component);
  project_->componentsChanged();
}

void CComponents::makeElement(IComponent& component, const BString& element) {
  ProjectContents& contents = project_->contents();
  const Ref<IPersistStorage> persist = query<IPersistStorage>(&component);
  if (!persist) throw StatusError(E_FAIL);
  Ref<IStorage> storage;
  check(contents.root->CreateStorage(element, kSubStorage, &storage));
  const HRESULT status = guard([&] {
    Guid clsid;
    check(persist->GetClassID(&clsid));
    check(storage->SetClass(clsid));
    check(persist->InitNew(storage.get()));
  });
  if (failed(status)) {
    storage = nullptr;
    ignore(contents.root->DestroyElement(element));
    throw StatusError(status);
  }
  contents.storages.add(persist, storage, element);
}

HRESULT CComponents::Delete(IDispatch* component) {
  return guard([&] {
    const auto same = [&](const Ref<IComponent>& entry) { return sameObject(entry.get(), component); };
    if (std::erase_if(project_->contents().components, same) != 0) project_->componentsChanged();
  });
}

}  // namespace forgeyard
