#pragma once

#include "engine/self_documentation/self_documenting.h"
#include "model/core/cookie_table.h"
#include "platform/com/object.h"
#include "platform/storage/records/persist.h"
#include "typelib/host.h"
#include "typelib/workspace.h"

namespace forgeyard {

// The object that a host keeps for a whole workspace: one stream for the layout of each project, in the
// storage that the host gives it, and cookies. Main thread only.
class CWorkspaceLO final : public ComObject<IWorkspaceLO, IPersistStorage, IPersistStream, SupportCookies,
                                            ILoadedObject, SelfDocumenting> {
 public:
  // IWorkspaceLO
  HRESULT GetWorkspaceStorage(IUnknown* project, Ref<IStream>* out) override;

  // IPersistStorage. The layouts are in their streams already when it is saved.
  HRESULT GetClassID(Guid* out) override;
  HRESULT IsDirty() override { return S_OK; }
  HRESULT InitNew(IStorage* storage) override { return Load(storage); }
  HRESULT Load(IStorage* storage) override;
  HRESULT Save(IStorage*, bool) override { return S_OK; }
  HRESULT SaveCompleted(IStorage* storage) override;
  HRESULT HandsOffStorage() override;

  // IPersistStream. Cookies live only while the workspace is open: a table is read, and none is written.
  HRESULT Load(IStream* stream) override;
  HRESULT Save(IStream* stream, bool clearDirty) override;

  // ILoadedObject
  HRESULT OnLoad(IUnknown*) override { return S_OK; }
  HRESULT OnUnload() override { return HandsOffStorage(); }

 private:
  CookieTable& cookies() override { return cookies_; }
  const History& history() const override;

  Ref<IStorage> storage_;  // null outside its normal state
  CookieTable cookies_;
};

}  // namespace forgeyard
