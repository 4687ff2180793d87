#pragma once

#include "typelib/component.h"

namespace forgeyard {

// The output of one component feeds another.
struct IConnection : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7013-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_From(Ref<IComponent>* out) = 0;
  virtual HRESULT get_To(Ref<IComponent>* out) = 0;
  virtual HRESULT Init(IComponent* from, IComponent* to) = 0;
  virtual HRESULT Close() = 0;
};

struct IConnections : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7014-93C4-4E6F-A8D1-2F60C1B49E01");

  // The first connection that begins at that component.
  virtual HRESULT get_Item(IComponent* lhs, Ref<IConnection>* out) = 0;
  virtual HRESULT get_Count(std::int32_t* value) = 0;
  virtual HRESULT get__NewEnum(Ref<IUnknown>* out) = 0;  // IEnumVARIANT of IConnection
  virtual HRESULT Delete(IConnection* connection) = 0;
  // From `rhs` to `lhs`; refused when it would close a circle or stands already.
  virtual HRESULT New(IComponent* rhs, IComponent* lhs, Ref<IConnection>* out) = 0;
  virtual HRESULT Close() = 0;
};

FORGEYARD_DUAL(IConnection)
FORGEYARD_DUAL(IConnections)

}  // namespace forgeyard
