#include "model/project/workspace_object.h"

#include "typelib/classes.h"
#include "typelib/project.h"

namespace forgeyard {

HRESULT CWorkspaceLO::GetWorkspaceStorage(IUnknown* project, Ref<IStream>* out) {
  return guard([&] {
    constexpr std::uint32_t kOpen = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
    *out = nullptr;
    const Ref<IProject> owner = query<IProject>(project);
    if (!owner || !storage_) return S_FALSE;
    BString name;
    check(owner->get_Name(&name));
    if (succeeded(storage_->OpenStream(name, kOpen, out))) return S_OK;
    // The name may also be one that no element can have.
    return succeeded(storage_->CreateStream(name, kOpen, out)) ? S_OK : S_FALSE;
  });
}

HRESULT CWorkspaceLO::GetClassID(Guid* out) {
  *out = CLSID_WorkspaceLO;
  return S_OK;
}

HRESULT CWorkspaceLO::Load(IStorage* storage) {
  if (storage_) return E_FAIL;
  storage_ = Ref<IStorage>(storage);
  return S_OK;
}

HRESULT CWorkspaceLO::SaveCompleted(IStorage* storage) {
  if (storage) storage_ = Ref<IStorage>(storage);
  return S_OK;
}

HRESULT CWorkspaceLO::HandsOffStorage() {
  storage_ = nullptr;
  return S_OK;
}

HRESULT CWorkspaceLO::Load(IStream* stream) {
  return guard([&] {
    RecordReader record(stream);
    TextPairs pairs;
    const std::uint32_t version = record.u32();
    if (version == 0) return;
    // What stands before damage counts.
    const HRESULT status = guard([&] { LoadFields(record).pairs(u"cookies", pairs, true); });
    cookies_.assign(pairs);
    check(status);
  });
}

HRESULT CWorkspaceLO::Save(IStream* stream, bool) {
  return guard([&] { RecordWriter(stream).u32(0); });
}

}  // namespace forgeyard
