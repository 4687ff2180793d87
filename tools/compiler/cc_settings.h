#pragma once

#include "tools/settings/settings_object.h"
#include "typelib/classes.h"

namespace forgeyard {

// The settings of a compiler in one configuration.
class CcSettings final : public SettingsObject<CcSettings, ICcSettings> {
 public:
  static constexpr SettingsLayout kLayout{
      CommonDefaults{
          .input = u".c;.i;.ii;.m;.cc;.cxx;.cpp;.C;.s;.S", .output = u".obj", .commandOutDir = u"$(CIntDir)"},
      SettingsRows<ICcSettings>::kRows};
  static constexpr SettingsTable kTable = kLayout.table(CLSID_CcSettings, true, true);

#define FORGEYARD_SETTING FORGEYARD_SETTING_ACCESSORS
#include "typelib/settings/compiler.inc"
};

}  // namespace forgeyard
