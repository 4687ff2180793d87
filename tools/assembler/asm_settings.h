#pragma once

#include "tools/assembler/asm_output.h"
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

  void updateFollowers() { updateAssemblerOutput(*this); }

#define FORGEYARD_SETTING FORGEYARD_SETTING_ACCESSORS
#include "typelib/settings/assembler.inc"
};

}  // namespace forgeyard
