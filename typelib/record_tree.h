#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/text/bstring.h"

namespace forgeyard {

// Records as named values, apart from their bytes. A value owns what is below it.
struct RecordField;
struct RecordNode {
  using List = std::vector<RecordNode>;
  using Fields = std::vector<RecordField>;  // in stored order

  RecordNode();
  RecordNode(bool flag);             // NOLINT: values convert by design
  RecordNode(std::int64_t number);   // NOLINT
  RecordNode(const BString& text);   // NOLINT
  RecordNode(const char16_t* text);  // NOLINT
  RecordNode(List list);             // NOLINT
  RecordNode(Fields fields);         // NOLINT
  RecordNode(const RecordNode& other);
  RecordNode(RecordNode&& other) noexcept;
  RecordNode& operator=(const RecordNode& other);
  RecordNode& operator=(RecordNode&& other) noexcept;
  ~RecordNode();

  bool isNull() const { return std::holds_alternative<std::monostate>(value); }
  template <class T>
  const T* get() const {
    return std::get_if<T>(&value);
  }
  template <class T>
  T* get() {
    return std::get_if<T>(&value);
  }
  // The field of that name; null if it isn't there or this has no fields.
  const RecordNode* find(std::string_view name) const;
  RecordNode* find(std::string_view name);
  // This has fields, none of that name.
  void add(std::string name, RecordNode node);

  std::variant<std::monostate, bool, std::int64_t, BString, List, Fields> value;
  // Worked out by builds and saves or left over from older records: not what somebody has entered.
  bool learnt = false;
  // In the text that it was read from, from 1; 0: it comes from none.
  std::uint32_t line = 0;

  // Whether the values are equal.
  friend bool operator==(const RecordNode& a, const RecordNode& b);
};

struct RecordField {
  std::string name;
  RecordNode node;

  friend bool operator==(const RecordField& a, const RecordField& b) {
    return a.name == b.name && a.node == b.node;
  }
};

// A node is whole only now that its fields are.
inline RecordNode::RecordNode() = default;
inline RecordNode::RecordNode(bool flag) : value(flag) {}
inline RecordNode::RecordNode(std::int64_t number) : value(number) {}
inline RecordNode::RecordNode(const BString& text) : value(text) {}
inline RecordNode::RecordNode(const char16_t* text) : value(BString(text)) {}
inline RecordNode::RecordNode(List list) : value(std::move(list)) {}
inline RecordNode::RecordNode(Fields fields) : value(std::move(fields)) {}
inline RecordNode::RecordNode(const RecordNode& other) = default;
inline RecordNode::RecordNode(RecordNode&& other) noexcept = default;
inline RecordNode& RecordNode::operator=(const RecordNode& other) = default;
inline RecordNode& RecordNode::operator=(RecordNode&& other) noexcept = default;
inline RecordNode::~RecordNode() = default;

inline const RecordNode* RecordNode::find(std::string_view name) const {
  const Fields* fields = get<Fields>();
  if (!fields) return nullptr;
  const auto found = std::find_if(fields->begin(), fields->end(),
                                  [&](const RecordField& field) { return field.name == name; });
  return found == fields->end() ? nullptr : &found->node;
}

inline RecordNode* RecordNode::find(std::string_view name) {
  return const_cast<RecordNode*>(std::as_const(*this).find(name));
}

inline void RecordNode::add(std::string name, RecordNode node) {
  get<Fields>()->push_back({std::move(name), std::move(node)});
}

// A null text and an empty one differ here.
inline bool operator==(const RecordNode& a, const RecordNode& b) {
  return a.value == b.value;
}

// Why records can't be made of a tree of values.
struct RecordFault {
  std::string where;  // "components[2].settings[0].Enabled"; empty for the whole
  std::uint32_t line = 0;
  std::string what;  // a clause without a full stop
  // For a key that isn't known: it, and those that are. For one that is missing: it, and those that stand
  // there and may be meant for it. Else empty.
  std::string key;
  std::vector<std::string> others;
};

}  // namespace forgeyard
