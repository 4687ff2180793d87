#pragma once

#include "platform/com/unknown.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard {

// What a workspace keeps beside its projects, for each user alone.
struct IWorkspaceLO : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D703A-93C4-4E6F-A8D1-2F60C1B49E01");

  // The stream for the layout of a project in the pane, named by the project and made where it is missing.
  // Null and 1 when there is none to be had.
  virtual HRESULT GetWorkspaceStorage(IUnknown* project, Ref<IStream>* out) = 0;
};

}  // namespace forgeyard
