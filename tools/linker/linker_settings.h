#pragma once

#include "tools/linker/linker_output.h"
#include "tools/settings/settings_object.h"
#include "typelib/classes.h"

namespace forgeyard {

// The settings of a linker in one configuration.
class LinkerSettings final : public SettingsObject<LinkerSettings, ILinkerSettings> {
 public:
  static constexpr SettingsLayout kLayout{
      CommonDefaults{.input = u".lk", .output = u"", .commandOutDir = u"$(COutDir)"},
      SettingsRows<ILinkerSettings>::kRows};
  static constexpr SettingsTable kTable = kLayout.table(CLSID_LinkerSettings, true, true);

  void updateFollowers() { updateLinkerOutput(*this); }

#define FORGEYARD_SETTING FORGEYARD_SETTING_ACCESSORS
#include "typelib/settings/linker.inc"
};

}  // namespace forgeyard
