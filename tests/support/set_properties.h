#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/com/type_info.h"

namespace forgeyard::test {

// Properties by name, as a script sets them.
struct NamedValue {
  NamedValue(BString property, const char16_t* text) : name(std::move(property)), value(BString(text)) {}
  NamedValue(BString property, std::int32_t number) : name(std::move(property)), value(number) {}

  BString name;
  Variant value;
};
using Properties = std::vector<NamedValue>;

inline Variant getProperty(IDispatch& object, const BString& name) {
  std::int32_t id = 0;
  Variant value;
  EXPECT_EQ(object.GetIDsOfNames({&name, 1}, &id), S_OK) << name.narrow();
  EXPECT_EQ(object.Invoke(id, InvokeKind::PropertyGet, {}, &value, nullptr), S_OK) << name.narrow();
  return value;
}

inline void setProperty(IDispatch& object, const BString& name, const Variant& value) {
  std::int32_t id = 0;
  ASSERT_EQ(object.GetIDsOfNames({&name, 1}, &id), S_OK) << name.narrow();
  ASSERT_EQ(object.Invoke(id, InvokeKind::PropertyPut, {&value, 1}, nullptr, nullptr), S_OK) << name.narrow();
}

inline void setProperties(IDispatch& object, const Properties& properties) {
  for (const auto& [name, value] : properties) setProperty(object, name, value);
}

// A value as text, to compare and to show.
inline std::string shown(const Variant& value) {
  BString text;
  EXPECT_EQ(value.toText(&text), S_OK);
  return text.narrow();
}

}  // namespace forgeyard::test
