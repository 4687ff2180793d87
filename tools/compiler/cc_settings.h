#pragma once

#include "tools/settings/settings_object.h"
#include "typelib/classes.h"

namespace forgeyard {

#define FORGEYARD_CC_SETTINGS(PROPERTY)            \
  PROPERTY(Number, TranslateMode, 0u, 1)           \
  PROPERTY(Flag, DebugInfo, 0u, 2)                 \
  PROPERTY(Flag, AnsiCompliance, 0u, 3)            \
  PROPERTY(Flag, NoStdLibs, 0u, 4)                 \
  PROPERTY(Flag, SaveIntFiles, 0u, 5)              \
  PROPERTY(Text, IncludePath, u"", 6)              \
  PROPERTY(Text, DefineMacros, u"", 7)             \
  PROPERTY(Text, UndefineMacros, u"", 8)           \
  PROPERTY(Number, OptimisationLevel, 0u, 9)       \
  PROPERTY(Text, PreprocessorOptions, u"", 10)     \
  PROPERTY(Text, AssemblerOptions, u"", 11)        \
  PROPERTY(Text, TargetCPUOptions, u"", 12)        \
  PROPERTY(Text, SpecificOptimisations, u"", 13)   \
  PROPERTY(Text, SmallDataThreshold, u"0", 14)     \
  PROPERTY(Number, WarningLevel, 1u, 15)           \
  PROPERTY(Text, EnableSpecificWarnings, u"", 16)  \
  PROPERTY(Text, DisableSpecificWarnings, u"", 17) \
  PROPERTY(Text, Options, u"", 18)

// The settings of a compiler in one configuration.
class CcSettings final : public SettingsObject<CcSettings, ICcSettings> {
 public:
  static const SettingsTable& table();
  FORGEYARD_SETTINGS(FORGEYARD_CC_SETTINGS)
};

FORGEYARD_SETTINGS_TABLE(CcSettings, FORGEYARD_CC_SETTINGS, u".c;.i;.ii;.m;.cc;.cxx;.cpp;.C;.s;.S", u".obj",
                         u"$(CIntDir)", true, true)

#undef FORGEYARD_CC_SETTINGS

}  // namespace forgeyard
