#pragma once

#include <cstdint>
#include <vector>

#include "platform/com/unknown.h"
#include "platform/storage/records/record_fields.h"
#include "platform/text/bstring.h"
#include "tools/settings/settings_table.h"

namespace forgeyard {

// The values of one settings object, one for each row of its table. Copying makes a clone.
class SettingsValues {
 public:
  // Starts with the defaults. The table must outlive the object.
  explicit SettingsValues(const SettingsTable& table);

  const SettingsTable& table() const { return *table_; }
  const BString& text(std::size_t property) const { return values_[property].text; }
  std::uint32_t number(std::size_t property) const { return values_[property].number; }
  void put(std::size_t property, const BString& text);
  void put(std::size_t property, std::uint32_t number);

  // Returns whether a put has changed a value since the last load or save.
  bool changed() const { return changed_; }
  void markSaved() { changed_ = false; }

  // Returns whether all values but BuildDirty agree; false for values of another class.
  bool logicallyEqual(const SettingsValues& other) const;

  void describe(RecordFields& fields);
  // Read and write the record at the stream's position. Both throw StatusError; values read before a failure
  // stay.
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

// Used inside the module only: gives access to the values of a settings object of any class.
struct ISettingsValues : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("C3F0A9D4-7E15-4B62-9A0D-58E1C47B2F36");

  virtual const SettingsValues& settingsValues() const = 0;
};

}  // namespace forgeyard
