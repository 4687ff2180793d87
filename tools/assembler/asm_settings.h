#pragma once

#include "tools/settings/settings_object.h"
#include "typelib/classes.h"

namespace forgeyard {

#define FORGEYARD_ASM_SETTINGS(PROPERTY)      \
  PROPERTY(Flag, ListConditionedOut, 0u, 3)   \
  PROPERTY(Flag, WriteNonGlobals, 1u, 4)      \
  PROPERTY(Flag, EnableCommonMacros, 0u, 5)   \
  PROPERTY(Flag, ExpandMacros, 0u, 6)         \
  PROPERTY(Flag, DisableWarnings, 0u, 7)      \
  PROPERTY(Flag, MakeUndefinedXREF, 0u, 8)    \
  PROPERTY(Flag, WriteEquates, 1u, 9)         \
  PROPERTY(Flag, LineNumsInDebugInfo, 0u, 10) \
  PROPERTY(Flag, SLDInDebugInfo, 0u, 11)      \
  PROPERTY(Text, IncludePath, u"", 12)        \
  PROPERTY(Text, EquateSymbols, u"", 13)      \
  PROPERTY(Text, Options, u"", 14)            \
  PROPERTY(Flag, CreateListingFile, 0u, 1)    \
  PROPERTY(Flag, CreateSymbolFile, 0u, 2)

// The settings of an assembler in one configuration.
class AsmSettings final : public SettingsObject<AsmSettings, IAsmSettings> {
 public:
  static const SettingsTable& table();
  FORGEYARD_SETTINGS(FORGEYARD_ASM_SETTINGS)
};

FORGEYARD_SETTINGS_TABLE(AsmSettings, FORGEYARD_ASM_SETTINGS, u"", u".obj", u"$(CIntDir)", true, true)

#undef FORGEYARD_ASM_SETTINGS

}  // namespace forgeyard
