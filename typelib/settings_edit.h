#pragma once

#include "platform/com/ref.h"

namespace forgeyard {

// Settings some of whose properties follow from others. Whoever edits settings for a user (a settings page,
// the command `set`, an assignment in a script) puts a property and then reports it here. A bare put changes
// that property alone, as a load does. Main thread only.
struct ISettingsEdit : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("7D0E5A61-2C9B-4F83-B1E6-904A3D87C5F2");

  // The property of this dispatch identifier was put. Writes the properties that follow from it.
  virtual HRESULT PropertyEdited(std::int32_t id) = 0;
};

// Reports an edit to the object, if it wants to know.
inline HRESULT reportEdit(IUnknown* object, std::int32_t id) {
  const Ref<ISettingsEdit> settings = query<ISettingsEdit>(object);
  return settings ? settings->PropertyEdited(id) : S_OK;
}

}  // namespace forgeyard
