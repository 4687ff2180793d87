#pragma once

#include <cstdint>

#include "platform/com/guid.h"
#include "platform/com/status.h"

namespace forgeyard {

// Root of all interfaces. An interface declares its identifier as `iid` and its base as `Base`; interfaces
// have single inheritance and no data. Calls belong to the apartment's thread, AddRef and Release to any
// thread.
//
// In parameters that are interface pointers are borrowed for the call and may be null where an operation says
// so; out parameters are Ref<T>*, which the callee fills with a reference of the caller's own.
struct IUnknown {
  using Base = void;
  static constexpr Guid iid = guid("00000000-0000-0000-C000-000000000046");

  // Nulls *out first. Every interface of one object answers the query for IUnknown with one address.
  virtual HRESULT QueryInterface(const Guid& iid, void** out) = 0;
  virtual std::uint32_t AddRef() = 0;
  virtual std::uint32_t Release() = 0;

 protected:
  ~IUnknown() = default;
};

}  // namespace forgeyard
