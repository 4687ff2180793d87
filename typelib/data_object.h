#pragma once

#include "platform/com/guid.h"
#include "platform/com/ref.h"
#include "platform/com/unknown.h"

namespace forgeyard {

// What is dragged within the workspace: references to one or two objects, the class that says what kind of
// thing they are, and an instance number.
struct IKVDataObject : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D703B-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT GetData(Ref<IUnknown>* out) = 0;  // null before it is set, as all references
  virtual HRESULT SetData(IUnknown* data) = 0;
  virtual HRESULT GetGUID(Guid* out) = 0;
  virtual HRESULT SetGUID(const Guid& kind) = 0;
  virtual HRESULT GetInstance(std::int32_t* out) = 0;
  virtual HRESULT SetInstance(std::int32_t instance) = 0;
  virtual HRESULT SetData2(IUnknown* data) = 0;
  virtual HRESULT GetData2(Ref<IUnknown>* out) = 0;
};

}  // namespace forgeyard
