#pragma once

#include "tools/settings/settings_object.h"
#include "typelib/classes.h"

namespace forgeyard {

#define FORGEYARD_CMD_LINE_SETTINGS(PROPERTY) \
  PROPERTY(Flag, RunOnce, 0u, 2)              \
  PROPERTY(Text, FileSeparator, u"", 1)

// The settings of a command line in one configuration.
class CmdLineSettings final : public SettingsObject<CmdLineSettings, ICmdLineSettings> {
 public:
  static const SettingsTable& table();
  FORGEYARD_SETTINGS(FORGEYARD_CMD_LINE_SETTINGS)
};

FORGEYARD_SETTINGS_TABLE(CmdLineSettings, FORGEYARD_CMD_LINE_SETTINGS, u"", u"", u"", false, false)

#undef FORGEYARD_CMD_LINE_SETTINGS

}  // namespace forgeyard
