#pragma once

#include <cstdint>
#include <type_traits>

#include "platform/com/object.h"
#include "platform/com/type_info.h"
#include "platform/storage/records/persist.h"
#include "tools/settings/settings_values.h"
#include "tools/settings/value_of.h"
#include "typelib/settings.h"
#include "typelib/settings_edit.h"

namespace forgeyard {

// What FORGEYARD_SETTING can be defined as in a settings class: the two operations of a property.
#define FORGEYARD_SETTING_ACCESSORS(TYPE, NAME, ...)                                        \
  HRESULT get_##NAME(SettingParameter<SettingsProperty::Type::TYPE>::Out* value) override { \
    return this->get(settingIndex(Self::kLayout.properties, #NAME), value);                 \
  }                                                                                         \
  HRESULT put_##NAME(SettingParameter<SettingsProperty::Type::TYPE>::In value) override {   \
    return this->put(settingIndex(Self::kLayout.properties, #NAME), value);                 \
  }

// The settings of a tool component in one configuration. Class gives its layout and kTable, Interface is what
// it offers.
template <class Class, class Interface>
class SettingsObject
    : public ComObject<Dual<Interface>, IPersistStream, ISettingsEdit, ISettingsValues, IRecord> {
 public:
  using SettingsInterface = Interface;
  // The class as the accessors name it, here and in the class itself.
  using Self = Class;

  // IBuilderSettings
#define FORGEYARD_SETTING FORGEYARD_SETTING_ACCESSORS
#include "typelib/settings/builder.inc"

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

  // ISettingsEdit
  HRESULT PropertyEdited(std::int32_t id) override {
    return guard([&] {
      if (values_.table().isFollowed(id)) static_cast<Class&>(*this).updateFollowers();
    });
  }

  // IPersistStream
  HRESULT GetClassID(Guid* out) override {
    *out = values_.table().clsid;
    return S_OK;
  }
  HRESULT IsDirty() override {
    return values_.changed() ? S_OK : S_FALSE;
  }
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
  void describe(RecordFields& fields) override {
    values_.describe(fields);
  }

  // ISettingsValues
  const SettingsValues& settingsValues() const override {
    return values_;
  }

 protected:
  template <class Value>
  HRESULT get(std::size_t property, Value* value) {
    if constexpr (std::is_same_v<Value, BString>) {
      *value = values_.text(property);
    } else {
      *value = static_cast<Value>(values_.number(property));
    }
    return S_OK;
  }
  template <class Value>
  HRESULT put(std::size_t property, const Value& value) {
    if constexpr (std::is_same_v<Value, BString>) {
      values_.put(property, value);
    } else {
      values_.put(property, static_cast<std::uint32_t>(value));
    }
    return S_OK;
  }

 private:
  SettingsValues values_{Class::kTable};
};

}  // namespace forgeyard
