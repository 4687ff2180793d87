#pragma once

#include "platform/com/enumerators.h"
#include "platform/com/type_info.h"

namespace forgeyard {

// Identifier of `_NewEnum` and of the default member in every collection.
inline constexpr std::int32_t DISPID_NEWENUM = -4;
inline constexpr std::int32_t DISPID_VALUE = 0;

// A plain list of values to walk.
struct ISimpleCollection : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("3F9C2D7F-EC25-11D1-8180-0080C8782234");

  virtual HRESULT get__NewEnum(Ref<IUnknown>* out) = 0;  // an IEnumVARIANT
  virtual HRESULT get_Count(std::int32_t* value) = 0;
};

FORGEYARD_DUAL(ISimpleCollection)

}  // namespace forgeyard
