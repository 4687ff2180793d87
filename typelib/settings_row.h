#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

#include "platform/com/type_info.h"

namespace forgeyard {

// What a property of a settings class holds before anybody sets it.
struct InitialValue {
  constexpr InitialValue() = default;
  constexpr InitialValue(const char16_t* initialText) : text(initialText) {}
  constexpr InitialValue(std::uint32_t initialNumber) : number(initialNumber) {}

  std::u16string_view text;
  std::uint32_t number = 0;
};

// What the values of a number mean: the first name is that of 0, the next that of 1, and so on.
struct SettingChoices {
  constexpr SettingChoices() = default;
  constexpr SettingChoices(std::initializer_list<const char*> names) {
    for (const char* name : names) {
      list.at(count) = {static_cast<std::int32_t>(count), name};
      ++count;
    }
  }
  std::span<const Choice> all() const { return std::span(list).first(count); }

  std::array<Choice, 4> list{};
  std::size_t count = 0;
};

// One property of a settings class. A table in typelib/settings/ has a row for each,
//
//   FORGEYARD_SETTING(TYPE, NAME, .id = ..., .place = ..., further fields)
//
// in the order of the interface. The interface and its description, the stored record, the copies and the
// comparison of settings, the commands that set and show them, completion and the manual are made from these
// rows. A table is included wherever one of these is made, after a definition of FORGEYARD_SETTING.
struct SettingsProperty {
  // Text: a string. Flag: a signed 32-bit number, zero is off. Number: an unsigned 32-bit number.
  enum class Type : std::uint8_t { Text, Flag, Number };

  bool isText() const { return type == Type::Text; }

  Type type = Type::Text;
  std::u16string_view name;
  const char* memberName = "";  // the same, for the description
  Thunk get;
  Thunk put;
  std::int32_t id = 0;          // of late-bound calls
  std::size_t place = 0;        // in its block of the stored record, from 1
  InitialValue initial = {};    // empty or 0 if not given
  bool isFollowed = false;      // others follow from it: ISettingsEdit
  const char* help = "";        // one line; may be missing where there are choices
  SettingChoices choices = {};  // of a number that is a choice among a few
};

// How the values of each type pass through an interface.
template <SettingsProperty::Type>
struct SettingParameter {
  using Out = std::uint32_t;
  using In = std::uint32_t;
};
template <>
struct SettingParameter<SettingsProperty::Type::Flag> {
  using Out = std::int32_t;
  using In = std::int32_t;
};
template <>
struct SettingParameter<SettingsProperty::Type::Text> {
  using Out = BString;
  using In = const BString&;
};

// The position of a property among the rows; doesn't compile where there is none of that name.
consteval std::size_t settingIndex(std::span<const SettingsProperty> rows, std::string_view name) {
  std::size_t index = 0;
  while (rows[index].memberName != name) ++index;
  return index;
}

// What FORGEYARD_SETTING can be defined as.
// In an interface: the two operations of a property.
#define FORGEYARD_SETTING_OPERATIONS(TYPE, NAME, ...)                                         \
  virtual HRESULT get_##NAME(SettingParameter<SettingsProperty::Type::TYPE>::Out* value) = 0; \
  virtual HRESULT put_##NAME(SettingParameter<SettingsProperty::Type::TYPE>::In value) = 0;

// In a list of rows: the row, where Interface is the interface of the property.
#define FORGEYARD_SETTING_ROW(TYPE, NAME, ...)                                \
  SettingsProperty{.type = SettingsProperty::Type::TYPE,                      \
                   .name = u"" #NAME,                                         \
                   .memberName = #NAME,                                       \
                   .get = detail::MemberThunk<&Interface::get_##NAME>::thunk, \
                   .put = detail::MemberThunk<&Interface::put_##NAME>::thunk, \
                   __VA_ARGS__},

}  // namespace forgeyard
