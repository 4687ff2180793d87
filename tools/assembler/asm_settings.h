#pragma once

#include "tools/settings/settings_object.h"
#include "typelib/classes.h"

namespace forgeyard {

// The settings of an assembler in one configuration.
class AsmSettings final : public SettingsObject<AsmSettings, IAsmSettings> {
 public:
  static constexpr SettingsLayout kLayout{
      CommonDefaults{.input = u"", .output = u".obj", .commandOutDir = u"$(CIntDir)"},
      SettingsRows<IAsmSettings>::kRows};
  static constexpr SettingsTable kTable = kLayout.table(CLSID_AsmSettings, true, true);

#define FORGEYARD_SETTING FORGEYARD_SETTING_ACCESSORS
#include "typelib/settings/assembler.inc"
};

}  // namespace forgeyard
