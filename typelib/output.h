#pragma once

#include "platform/com/type_info.h"

namespace forgeyard {

// Where every build participant writes its lines.
struct IOutputTab : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7007-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_OutputTab(BString* value) = 0;
  virtual HRESULT put_OutputTab(const BString& value) = 0;
  // Appends one line; 1 when the text is null or no output window can be reached.
  virtual HRESULT MsgOut(const BString& text) = 0;
};

FORGEYARD_DUAL(IOutputTab)

}  // namespace forgeyard
