#include "tools/settings/settings_values.h"

namespace forgeyard {

namespace {

constexpr std::size_t kCommand = commonSetting("Command");
constexpr std::size_t kBuildDirty = commonSetting("BuildDirty");

}  // namespace

SettingsValues::SettingsValues(const SettingsTable& table) : table_(&table) {
  values_.reserve(table.properties.size());
  for (const SettingsProperty& property : table.properties) {
    values_.push_back(
        {property.isText() ? BString(property.initial.text) : BString(), property.initial.number});
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
    if (i == kBuildDirty) continue;
    if (values_[i] != other.values_[i]) return false;
  }
  return true;
}

void SettingsValues::describe(RecordFields& fields, std::size_t property) {
  const SettingsProperty& row = table_->properties[property];
  const bool generated = property == kCommand && table_->commandIsGenerated;
  if (generated || property == kBuildDirty) fields.learnt();
  Value& value = values_[property];
  if (row.isText()) {
    fields.text(row.name, value.text);
  } else if (row.type == SettingsProperty::Type::Flag) {
    auto flag = static_cast<std::int32_t>(value.number);
    fields.number(row.name, flag);
    value.number = static_cast<std::uint32_t>(flag);
  } else {
    fields.number(row.name, value.number);
  }
}

void SettingsValues::describe(RecordFields& fields) {
  fields.unusedVersion(u"version");
  for (std::size_t i = 0; i < kCommonSettings; ++i) describe(fields, i);
  fields.unusedVersion(u"own_version");
  for (const std::size_t i : table_->ownStored) describe(fields, i);
  if (table_->closingVersion) fields.unusedVersion(u"closing_version");
}

void SettingsValues::load(IStream* stream) {
  RecordReader reader(stream);
  LoadFields fields(reader);
  describe(fields);
  changed_ = false;
}

void SettingsValues::save(IStream* stream) {
  RecordWriter writer(stream);
  SaveFields fields(writer);
  describe(fields);
}

}  // namespace forgeyard
