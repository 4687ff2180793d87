#pragma once

#include "platform/com/enumerators.h"
#include "platform/com/type_info.h"

namespace forgeyard {

// Named string values on an object that persists.
struct IKVSupportCookies : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7008-93C4-4E6F-A8D1-2F60C1B49E01");

  // 1, with *value untouched, when there is no such cookie.
  virtual HRESULT get_Cookie(const BString& cookie, BString* value) = 0;
  virtual HRESULT put_Cookie(const BString& cookie, const BString& value) = 0;
  // 1 when there was none.
  virtual HRESULT DeleteCookie(const BString& cookie) = 0;
  // The names in sorted order.
  virtual HRESULT GetCookies(Ref<IEnumString>* out) = 0;
};

FORGEYARD_DUAL(IKVSupportCookies)

}  // namespace forgeyard
