#pragma once

#include "tools/compiler/translate_mode.h"
#include "tools/settings/settings_object.h"
#include "typelib/classes.h"

namespace forgeyard {

// The settings of a compiler in one configuration.
class CcSettings final : public SettingsObject<CcSettings, ICcSettings> {
 public:
  static constexpr SettingsLayout kLayout{
      CommonDefaults{.input = kToObject.input, .output = kToObject.output, .commandOutDir = u"$(CIntDir)"},
      SettingsRows<ICcSettings>::kRows};
  static constexpr SettingsTable kTable = kLayout.table(CLSID_CcSettings, true, true);

  void updateFollowers() { updateCompilerFiles(*this); }

#define FORGEYARD_SETTING FORGEYARD_SETTING_ACCESSORS
#include "typelib/settings/compiler.inc"
};

}  // namespace forgeyard
