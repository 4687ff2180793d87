#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/storage/records/records.h"

namespace forgeyard {

// Names and values, of which a value may be null.
using TextPairs = std::vector<std::pair<BString, BString>>;

// What walks over the fields of a record in their stored order. A record has one description, a function that
// names its fields to whoever walks: to be read from a stream, written to one, or carried between bytes and
// named values. `stored` tells whether a record of this version has the field; where it doesn't, reading
// keeps the value and writing, which is always of the newest version, doesn't come across it. All throw
// StatusError.
class RecordFields {
 public:
  virtual ~RecordFields() = default;

  // The record's version: `current` is written, and returned what the record has.
  virtual std::uint32_t version(std::uint32_t current) = 0;
  // One that nothing goes by; 0 is written.
  virtual void unusedVersion(std::u16string_view name) = 0;
  virtual void text(std::u16string_view name, BString& value) = 0;
  // The full name of a file. A persisted name that is relative makes it up at a load, whatever is stored.
  virtual void fileName(std::u16string_view name, const BString& persistAs, BString& value) = 0;
  virtual void number(std::u16string_view name, std::int32_t& value, bool stored = true) = 0;
  virtual void number(std::u16string_view name, std::uint32_t& value) = 0;
  // One byte.
  virtual void flag(std::u16string_view name, bool& value, bool stored = true) = 0;
  virtual void texts(std::u16string_view name, std::vector<BString>& value, bool stored = true) = 0;
  virtual void pairs(std::u16string_view name, TextPairs& value, bool stored = true) = 0;

  // Says of the next field that builds and saves work it out, not people.
  virtual RecordFields& learnt() { return *this; }
};

// Borrows the reader.
class LoadFields : public RecordFields {
 public:
  explicit LoadFields(RecordReader& record) : record_(record) {}

  std::uint32_t version(std::uint32_t current) override;
  void unusedVersion(std::u16string_view name) override;
  void text(std::u16string_view name, BString& value) override;
  void fileName(std::u16string_view name, const BString& persistAs, BString& value) override;
  void number(std::u16string_view name, std::int32_t& value, bool stored) override;
  void number(std::u16string_view name, std::uint32_t& value) override;
  void flag(std::u16string_view name, bool& value, bool stored) override;
  void texts(std::u16string_view name, std::vector<BString>& value, bool stored) override;
  void pairs(std::u16string_view name, TextPairs& value, bool stored) override;

 private:
  RecordReader& record_;
};

// Borrows the writer.
class SaveFields final : public RecordFields {
 public:
  explicit SaveFields(RecordWriter& record) : record_(record) {}

  std::uint32_t version(std::uint32_t current) override;
  void unusedVersion(std::u16string_view name) override;
  void text(std::u16string_view name, BString& value) override;
  void fileName(std::u16string_view name, const BString& persistAs, BString& value) override;
  void number(std::u16string_view name, std::int32_t& value, bool stored) override;
  void number(std::u16string_view name, std::uint32_t& value) override;
  void flag(std::u16string_view name, bool& value, bool stored) override;
  void texts(std::u16string_view name, std::vector<BString>& value, bool stored) override;
  void pairs(std::u16string_view name, TextPairs& value, bool stored) override;

 private:
  RecordWriter& record_;
};

// What walks over the record streams of a storage; each kind of storage describes its own.
class RecordStreams {
 public:
  using Describe = std::function<void(RecordFields&)>;
  // A stream of a version, if it has one, a count, so many records, and a text, if one is named.
  struct List {
    const char16_t* stream;
    std::u16string_view name;
    bool version = true;
    std::u16string_view closingText;
  };

  virtual ~RecordStreams() = default;
  // A stream of one record, which is part of what describes the storage if it has no name.
  virtual void record(const char16_t* stream, std::u16string_view name, const Describe& fields) = 0;
  virtual void list(const List& list, const Describe& fields) = 0;
};

// Inside the module only, offered by objects whose record is part of another one.
struct IRecord : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7082-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual void describe(RecordFields& fields) = 0;
};

}  // namespace forgeyard
