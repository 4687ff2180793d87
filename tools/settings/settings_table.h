#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/com/guid.h"

namespace forgeyard {

// One property of a settings class. Defaults, stored record, copies and comparison go by these rows, so a new
// property of a class is one more row of its table.
struct SettingsProperty {
  enum class Type : std::uint8_t { Text, Flag, Number };

  constexpr SettingsProperty() = default;
  constexpr SettingsProperty(Type kind, std::u16string_view propertyName, const char16_t* initial,
                             std::size_t storedPlace)
      : name(propertyName), type(kind), place(storedPlace), initialText(initial) {}
  constexpr SettingsProperty(Type kind, std::u16string_view propertyName, std::uint32_t initial,
                             std::size_t storedPlace)
      : name(propertyName), type(kind), place(storedPlace), initialNumber(initial) {}

  bool isText() const { return type == Type::Text; }

  std::u16string_view name;
  Type type = Type::Text;
  std::size_t place = 0;  // in its block of the stored record, from 1
  std::u16string_view initialText;
  std::uint32_t initialNumber = 0;
};

// What all settings classes have in common, the first block of each record.
enum class CommonSetting : std::size_t { Input, Output, Command, CommandOutDir, BuildDirty };
inline constexpr std::size_t kCommonSettings = 5;

// A settings class: its properties in the order of the interface, the common ones first, and its record. The
// record holds a version, the common block, a version, the class's own block in an order of its own, and in
// some classes one more version. A version is 0, and nothing looks at it.
struct SettingsTable {
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

// The rows of a class with `OwnCount` properties of its own. Places that aren't 1 to OwnCount don't compile.
template <std::size_t OwnCount>
struct SettingsLayout {
  consteval SettingsLayout(const CommonDefaults& defaults,
                           const std::array<SettingsProperty, OwnCount>& ownProperties) {
    using enum SettingsProperty::Type;
    properties[0] = {Text, u"Input", defaults.input, 1};
    properties[1] = {Text, u"Output", defaults.output, 2};
    properties[2] = {Text, u"Command", u"", 3};
    properties[3] = {Text, u"CommandOutDir", defaults.commandOutDir, 4};
    properties[4] = {Flag, u"BuildDirty", 1u, 5};
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
