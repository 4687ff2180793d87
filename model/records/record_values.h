#pragma once

#include <exception>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/com/guid.h"
#include "platform/storage/records/record_fields.h"
#include "platform/text/narrow.h"
#include "typelib/record_tree.h"

namespace forgeyard {

// What is thrown at a value that can't be stored. It doesn't leave the module.
class RecordFaultError : public std::exception {
 public:
  explicit RecordFaultError(RecordFault fault) : fault_(std::move(fault)) {}
  RecordFault take() { return std::move(fault_); }

 private:
  RecordFault fault_;
};

// A value with the way to it, for faults. Borrows the node.
class ValueReader {
 public:
  ValueReader(const RecordNode& node, std::string where) : node_(&node), where_(std::move(where)) {}

  const RecordNode& node() const { return *node_; }
  const std::string& where() const { return where_; }

  // The value as what it has to be; RecordFaultError if it is something else.
  BString text() const;
  BString textOrNull() const { return node_->isNull() ? BString() : text(); }
  std::int64_t number(std::int64_t least, std::int64_t greatest) const;
  std::uint32_t u32() const {
    return static_cast<std::uint32_t>(number(0, std::numeric_limits<std::uint32_t>::max()));
  }
  bool flag() const;
  Guid clsid() const;
  std::string bytes() const;  // of a list of hexadecimal texts
  std::vector<ValueReader> items() const;
  [[noreturn]] void fail(std::string what) const;

 private:
  const RecordNode* node_;
  std::string where_;
};

// The fields of a value, of which each has to be asked for.
class FieldsReader {
 public:
  // RecordFaultError if it has none.
  explicit FieldsReader(ValueReader value);

  const ValueReader& value() const { return value_; }
  bool has(std::string_view name);
  ValueReader require(std::string_view name);
  // RecordFaultError for a field that nobody has asked for.
  void finish() const;

 private:
  ValueReader field(const RecordNode& node, std::string_view name) const;
  std::vector<std::string> unasked() const;

  ValueReader value_;
  std::vector<std::string> known_;
};

// Bytes as a list of hexadecimal texts.
RecordNode bytesNode(std::string_view bytes);
RecordNode clsidNode(const Guid& clsid);

// From the bytes of a record to its values. Borrows both; the values are appended.
class ShowFields final : public RecordFields {
 public:
  ShowFields(RecordReader& record, RecordNode& out) : record_(record), out_(out) {}

  std::uint32_t version(std::uint32_t current) override;
  void unusedVersion(std::u16string_view name) override;
  void text(std::u16string_view name, BString& value) override;
  void fileName(std::u16string_view name, const BString& persistAs, BString& value) override;
  void number(std::u16string_view name, std::int32_t& value, bool stored) override;
  void number(std::u16string_view name, std::uint32_t& value) override;
  void flag(std::u16string_view name, bool& value, bool stored) override;
  void texts(std::u16string_view name, std::vector<BString>& value, bool stored) override;
  void pairs(std::u16string_view name, TextPairs& value, bool stored) override;
  RecordFields& learnt() override;

 private:
  void show(std::u16string_view name, RecordNode node);

  RecordReader& record_;
  RecordNode& out_;
  bool learnt_ = false;
};

// From the values of a record to its bytes. Borrows both.
class TakeFields final : public RecordFields {
 public:
  TakeFields(FieldsReader& fields, RecordWriter& record) : fields_(fields), record_(record) {}

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
  ValueReader field(std::u16string_view name) { return fields_.require(narrowFromWide(name)); }
  // A field that isn't stored in this version may only say what a load will take for it.
  bool storedHere(std::u16string_view name, bool stored, const RecordNode& otherwise);

  FieldsReader& fields_;
  RecordWriter& record_;
  std::uint32_t version_ = 0;
};

// The values of pairs and lists of texts.
RecordNode textsNode(const std::vector<BString>& texts);
RecordNode pairsNode(const TextPairs& pairs);

}  // namespace forgeyard
