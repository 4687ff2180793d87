#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "platform/com/guid.h"
#include "typelib/settings.h"

namespace forgeyard {

// The positions of properties that all settings classes have, and their number. They are the first block of
// each record.
consteval std::size_t commonSetting(std::string_view name) {
  return settingIndex(SettingsRows<IBuilderSettings>::kRows, name);
}
inline constexpr std::size_t kCommonSettings = SettingsRows<IBuilderSettings>::kRows.size();

// A settings class: its properties in the order of the interface, the common ones first, and its record. The
// record holds a version, the common block, a version, the class's own block in an order of its own, and in
// some classes one more version. A version is 0, and nothing looks at it.
struct SettingsTable {
  // Whether other properties follow from that of the identifier.
  bool isFollowed(std::int32_t id) const;

  Guid clsid;
  std::span<const SettingsProperty> properties;
  std::span<const std::size_t> ownStored;  // indices of the own properties, in the order of the record
  bool closingVersion;
  bool commandIsGenerated;  // from the other settings, at each build
};

// Defaults of the common properties that differ by class.
struct CommonDefaults {
  const char16_t* input;
  const char16_t* output;
  const char16_t* commandOutDir;
};

// The properties of a class that has `OwnCount` of its own. Places that aren't 1 to OwnCount don't compile,
// nor do identifiers that are taken.
template <std::size_t OwnCount>
struct SettingsLayout {
  consteval SettingsLayout(const CommonDefaults& defaults,
                           const std::array<SettingsProperty, OwnCount>& ownProperties) {
    std::ranges::copy(SettingsRows<IBuilderSettings>::kRows, properties.begin());
    properties[commonSetting("Input")].initial = defaults.input;
    properties[commonSetting("Output")].initial = defaults.output;
    properties[commonSetting("CommandOutDir")].initial = defaults.commandOutDir;
    for (std::size_t i = 0; i < OwnCount; ++i) {
      const std::size_t place = ownProperties[i].place;
      if (place < 1 || place > OwnCount || ownStored[place - 1] != 0) throw "a place is wrong or taken";
      properties[kCommonSettings + i] = ownProperties[i];
      ownStored[place - 1] = kCommonSettings + i;
    }
  }

  constexpr SettingsTable table(const Guid& clsid, bool closingVersion, bool commandIsGenerated) const {
    return {clsid, properties, ownStored, closingVersion, commandIsGenerated};
  }

  std::array<SettingsProperty, kCommonSettings + OwnCount> properties{};
  std::array<std::size_t, OwnCount> ownStored{};
};

template <std::size_t OwnCount>
SettingsLayout(const CommonDefaults&, const std::array<SettingsProperty, OwnCount>&)
    -> SettingsLayout<OwnCount>;

}  // namespace forgeyard
