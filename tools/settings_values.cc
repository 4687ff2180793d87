#include "tools/settings_values.h"

#include "platform/storage/records.h"

namespace forgeyard {

SettingsValues::SettingsValues(const SettingsTable& table) : table_(&table) {
  values_.reserve(table.properties.size());
  for (const SettingsProperty& property : table.properties) {
    values_.push_back(
        {property.isText() ? BString(property.initialText) : BString(), property.initialNumber});
  }
}

void SettingsValues::put(std::size_t property, const BString& text) {
  if (values_[property].text == text) return;
  values_[property].text = text;
  changed_ = true;
}

void SettingsValues::put(std::size_t property, std::uint32_t number) {
  if (values_[property].number == number) return;
  values_[property].number = number;
  changed_ = true;
}

bool SettingsValues::logicallyEqual(const SettingsValues& other) const {
  if (table_ != other.table_) return false;
  for (std::size_t i = 0; i < values_.size(); ++i) {
    if (i == static_cast<std::size_t>(CommonSetting::BuildDirty)) continue;
    if (values_[i] != other.values_[i]) return false;
  }
  return true;
}

// Calls version() and property(index) in the order of the record.
template <class Version, class Property>
void SettingsValues::walkRecord(Version&& version, Property&& property) const {
  version();
  for (std::size_t i = 0; i < COMMON_SETTINGS; ++i) property(i);
  version();
  for (const std::size_t i : table_->ownStored) property(i);
  if (table_->closingVersion) version();
}

void SettingsValues::load(IStream* stream) {
  RecordReader reader(stream);
  walkRecord([&] { reader.u32(); },
             [&](std::size_t i) {
               if (table_->properties[i].isText()) {
                 values_[i].text = reader.listedString();
               } else {
                 values_[i].number = reader.u32();
               }
             });
  changed_ = false;
}

void SettingsValues::save(IStream* stream) const {
  RecordWriter writer(stream);
  walkRecord([&] { writer.u32(0); },
             [&](std::size_t i) {
               if (table_->properties[i].isText()) {
                 writer.listedString(values_[i].text);
               } else {
                 writer.u32(values_[i].number);
               }
             });
}

}  // namespace forgeyard
