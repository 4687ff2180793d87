#pragma once

#include "tools/settings/settings_object.h"
#include "typelib/classes.h"

namespace forgeyard {

// The settings of a command line in one configuration.
class CmdLineSettings final : public SettingsObject<CmdLineSettings, ICmdLineSettings> {
 public:
  static constexpr SettingsLayout kLayout{CommonDefaults{.input = u"", .output = u"", .commandOutDir = u""},
                                          SettingsRows<ICmdLineSettings>::kRows};
  static constexpr SettingsTable kTable = kLayout.table(CLSID_CmdLineSettings, false, false);

  void updateFollowers() {}

#define FORGEYARD_SETTING FORGEYARD_SETTING_ACCESSORS
#include "typelib/settings/command_line.inc"
};

}  // namespace forgeyard
