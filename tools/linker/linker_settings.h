#pragma once

#include "tools/settings/settings_object.h"
#include "typelib/classes.h"

namespace forgeyard {

#define FORGEYARD_LINKER_SETTINGS(PROPERTY)         \
  PROPERTY(Number, OutputFormat, 0u, 1)             \
  PROPERTY(Text, OutputName, u"", 2)                \
  PROPERTY(Flag, AddOverlayRecognitionBytes, 0u, 3) \
  PROPERTY(Flag, ZeroBSSSections, 0u, 4)            \
  PROPERTY(Flag, CaseSensitive, 1u, 5)              \
  PROPERTY(Flag, ListExternals, 0u, 6)              \
  PROPERTY(Flag, MultipleDefsWarning, 0u, 7)        \
  PROPERTY(Flag, MultipleDeclsWarning, 0u, 8)       \
  PROPERTY(Text, RelocationFilePath, u"", 9)        \
  PROPERTY(Number, RelocationFileStyle, 0u, 10)     \
  PROPERTY(Text, GPRegisterLocation, u"", 11)       \
  PROPERTY(Text, LibraryPath, u"", 12)              \
  PROPERTY(Text, EquateSymbols, u"", 13)            \
  PROPERTY(Text, Options, u"/s", 14)                \
  PROPERTY(Flag, CreateSymbolFile, 0u, 15)          \
  PROPERTY(Flag, CreateMapFile, 0u, 16)

// The settings of a linker in one configuration.
class LinkerSettings final : public SettingsObject<LinkerSettings, ILinkerSettings> {
 public:
  static const SettingsTable& table();
  FORGEYARD_SETTINGS(FORGEYARD_LINKER_SETTINGS)
};

FORGEYARD_SETTINGS_TABLE(LinkerSettings, FORGEYARD_LINKER_SETTINGS, u".lk", u"", u"$(COutDir)", true, true)

#undef FORGEYARD_LINKER_SETTINGS

}  // namespace forgeyard
