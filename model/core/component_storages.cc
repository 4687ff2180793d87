#include "model/core/component_storages.h"

#include <algorithm>
#include <utility>

namespace forgeyard {

namespace {

constexpr std::uint32_t kSubStorage = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;

}  // namespace

void ComponentStorages::add(Ref<IPersistStorage> component, Ref<IStorage> storage, BString element) {
  entries_.push_back({std::move(component), std::move(storage), std::move(element)});
}

void ComponentStorages::save(const Entry& entry) {
  check(entry.component->Save(nullptr, true));
  if (entry.storage) check(entry.storage->Commit(STGC_ONLYIFCURRENT));
}

void ComponentStorages::saveCompleted() {
  for (const Entry& entry : entries_) check(entry.component->SaveCompleted(nullptr));
}

void ComponentStorages::destroy(IUnknown* component, IStorage& root) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return sameObject(entry.component.get(), component);
  });
  if (found == entries_.end()) return;
  ignore(found->component->HandsOffStorage());
  found->storage = nullptr;
  const BString element = found->element;
  entries_.erase(found);
  check(root.DestroyElement(element));
}

void ComponentStorages::release() {
  for (Entry& entry : entries_) {
    ignore(entry.component->HandsOffStorage());
    entry.storage = nullptr;
  }
}

void ComponentStorages::reopen(IStorage& root) {
  for (Entry& entry : entries_) {
    check(root.OpenStorage(entry.element, kSubStorage, &entry.storage));
    check(entry.component->SaveCompleted(entry.storage.get()));
    Guid clsid;
    check(entry.component->GetClassID(&clsid));
    check(entry.storage->SetClass(clsid));
  }
}

void ComponentStorages::close() {
  for (const Entry& entry : std::exchange(entries_, {})) ignore(entry.component->HandsOffStorage());
}

}  // namespace forgeyard
