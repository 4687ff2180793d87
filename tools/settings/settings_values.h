#pragma once

#include <cstdint>
#include <vector>

#include "platform/com/unknown.h"
#include "platform/storage/records/record_fields.h"
#include "platform/text/bstring.h"
#include "tools/settings/settings_table.h"

namespace forgeyard {

// The values of one settings object, by the rows of its table. A copy is a clone.
class SettingsValues {
 public:
  // The defaults. The table is borrowed for good.
  explicit SettingsValues(const SettingsTable& table);

  const SettingsTable& table() const { return *table_; }
  const BString& text(std::size_t property) const { return values_[property].text; }
  std::uint32_t number(std::size_t property) const { return values_[property].number; }
  void put(std::size_t property, const BString& text);
  void put(std::size_t property, std::uint32_t number);

  // Whether a put has changed a value since the last load or save.
  bool changed() const { return changed_; }
  void markSaved() { changed_ = false; }

  // Whether all but BuildDirty agrees; false for values of another class.
  bool logicallyEqual(const SettingsValues& other) const;

  void describe(RecordFields& fields);
  // The record at the stream's position. Both throw StatusError; what was read before a failure stays.
  void load(IStream* stream);
  void save(IStream* stream);

 private:
  struct Value {
    BString text;
    std::uint32_t number = 0;
    bool operator==(const Value&) const = default;
  };

  void describe(RecordFields& fields, std::size_t property);

  const SettingsTable* table_;
  std::vector<Value> values_;
  bool changed_ = false;
};

// Inside the module only: the values behind a settings object, for what works on settings of any class.
struct ISettingsValues : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("C3F0A9D4-7E15-4B62-9A0D-58E1C47B2F36");

  virtual const SettingsValues& settingsValues() const = 0;
};

}  // namespace forgeyard
