#pragma once

#include <cstdint>
#include <type_traits>

#include "platform/com/object.h"
#include "platform/com/type_info.h"
#include "platform/storage/records/persist.h"
#include "tools/settings/settings_values.h"
#include "typelib/settings.h"

namespace forgeyard {

// How the values of each type pass through an interface.
template <SettingsProperty::Type>
struct SettingsParameter {
  using Out = std::uint32_t;
  using In = std::uint32_t;
};
template <>
struct SettingsParameter<SettingsProperty::Type::Flag> {
  using Out = std::int32_t;
  using In = std::int32_t;
};
template <>
struct SettingsParameter<SettingsProperty::Type::Text> {
  using Out = BString;
  using In = const BString&;
};

// What a class makes of its list of properties, which is a macro that calls PROPERTY(type, name, default,
// place) for each in the order of the interface; the place is that in the class's block of the record.
#define FORGEYARD_SETTINGS_ROW(kind, property, initial, place) \
  SettingsProperty(SettingsProperty::Type::kind, u"" #property, initial, place),
#define FORGEYARD_SETTINGS_INDEX(kind, property, initial, place) property,
#define FORGEYARD_SETTINGS_ACCESSORS(kind, property, ...)                                        \
  HRESULT get_##property(SettingsParameter<SettingsProperty::Type::kind>::Out* value) override { \
    return this->get(Property::property, value);                                                 \
  }                                                                                              \
  HRESULT put_##property(SettingsParameter<SettingsProperty::Type::kind>::In value) override {   \
    return this->put(Property::property, value);                                                 \
  }

// In the public part of a settings class: its properties.
#define FORGEYARD_SETTINGS(PROPERTIES)   \
  enum class Property : std::size_t {    \
    LastCommon = kCommonSettings - 1,    \
    PROPERTIES(FORGEYARD_SETTINGS_INDEX) \
  };                                     \
  PROPERTIES(FORGEYARD_SETTINGS_ACCESSORS)

// Behind it: the table of its properties, and its record.
#define FORGEYARD_SETTINGS_TABLE(Class, PROPERTIES, input, output, commandOutDir, closingVersion,           \
                                 commandIsGenerated)                                                        \
  inline const SettingsTable& Class::table() {                                                              \
    static constexpr SettingsLayout layout(                                                                 \
        CommonDefaults{input, output, commandOutDir},                                                       \
        std::to_array<SettingsProperty>({PROPERTIES(FORGEYARD_SETTINGS_ROW)}));                             \
    static constexpr SettingsTable table = layout.table(CLSID_##Class, closingVersion, commandIsGenerated); \
    return table;                                                                                           \
  }

// The settings of a tool component in one configuration. Class gives table(), Interface is what it offers.
template <class Class, class Interface>
class SettingsObject : public ComObject<Dual<Interface>, IPersistStream, ISettingsValues, IRecord> {
 public:
  using SettingsInterface = Interface;

  // IBuilderSettings
  HRESULT get_Input(BString* value) override { return get(CommonSetting::Input, value); }
  HRESULT put_Input(const BString& value) override { return put(CommonSetting::Input, value); }
  HRESULT get_Output(BString* value) override { return get(CommonSetting::Output, value); }
  HRESULT put_Output(const BString& value) override { return put(CommonSetting::Output, value); }
  HRESULT get_Command(BString* value) override { return get(CommonSetting::Command, value); }
  HRESULT put_Command(const BString& value) override { return put(CommonSetting::Command, value); }
  HRESULT get_CommandOutDir(BString* value) override { return get(CommonSetting::CommandOutDir, value); }
  HRESULT put_CommandOutDir(const BString& value) override {
    return put(CommonSetting::CommandOutDir, value);
  }
  HRESULT get_BuildDirty(std::int32_t* value) override { return get(CommonSetting::BuildDirty, value); }
  HRESULT put_BuildDirty(std::int32_t value) override { return put(CommonSetting::BuildDirty, value); }
  HRESULT get_Clone(Ref<IBuilderSettings>* out) override {
    return guard([&] {
      const Ref<Class> clone = make<Class>();
      static_cast<SettingsObject&>(*clone).values_ = values_;
      *out = clone;
    });
  }
  HRESULT LogicallyEqual(IBuilderSettings* settings, std::int32_t* result) override {
    *result = 0;
    const Ref<ISettingsValues> other = query<ISettingsValues>(settings);
    if (!other || &other->settingsValues().table() != &values_.table()) return E_FAIL;
    *result = values_.logicallyEqual(other->settingsValues()) ? 1 : 0;
    return S_OK;
  }

  // IPersistStream
  HRESULT GetClassID(Guid* out) override {
    *out = values_.table().clsid;
    return S_OK;
  }
  HRESULT IsDirty() override { return values_.changed() ? S_OK : S_FALSE; }
  HRESULT Load(IStream* stream) override {
    return guard([&] { values_.load(stream); });
  }
  HRESULT Save(IStream* stream, bool clearDirty) override {
    return guard([&] {
      values_.save(stream);
      if (clearDirty) values_.markSaved();
    });
  }

  // IRecord
  void describe(RecordFields& fields) override { values_.describe(fields); }

  // ISettingsValues
  const SettingsValues& settingsValues() const override { return values_; }

 protected:
  template <class Property, class Value>
  HRESULT get(Property property, Value* value) {
    if constexpr (std::is_same_v<Value, BString>) {
      *value = values_.text(static_cast<std::size_t>(property));
    } else {
      *value = static_cast<Value>(values_.number(static_cast<std::size_t>(property)));
    }
    return S_OK;
  }
  template <class Property, class Value>
  HRESULT put(Property property, const Value& value) {
    if constexpr (std::is_same_v<Value, BString>) {
      values_.put(static_cast<std::size_t>(property), value);
    } else {
      values_.put(static_cast<std::size_t>(property), static_cast<std::uint32_t>(value));
    }
    return S_OK;
  }

 private:
  SettingsValues values_{Class::table()};
};

// The value of a property; throws StatusError.
template <class Object, class Interface, class Value>
Value valueOf(Object& object, HRESULT (Interface::*get)(Value*)) {
  Value value{};
  check((object.*get)(&value));
  return value;
}

}  // namespace forgeyard
