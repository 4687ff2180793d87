#include "platform/storage/records/record_fields.h"

namespace forgeyard {

std::uint32_t LoadFields::version(std::uint32_t) {
  return record_.u32();
}

void LoadFields::unusedVersion(std::u16string_view) {
  record_.u32();
}

void LoadFields::text(std::u16string_view, BString& value) {
  value = record_.listedString();
}

void LoadFields::fileName(std::u16string_view, const BString&, BString& value) {
  value = record_.listedString();
}

void LoadFields::number(std::u16string_view, std::int32_t& value, bool stored) {
  if (stored) value = record_.i32();
}

void LoadFields::number(std::u16string_view, std::uint32_t& value) {
  value = record_.u32();
}

void LoadFields::flag(std::u16string_view, bool& value, bool stored) {
  if (stored) value = record_.u8() != 0;
}

void LoadFields::texts(std::u16string_view, std::vector<BString>& value, bool stored) {
  constexpr std::uint32_t kSmallestEntry = 4;
  if (!stored) return;
  value.clear();
  for (std::uint32_t left = record_.count(kSmallestEntry); left > 0; --left)
    value.push_back(record_.listedString());
}

void LoadFields::pairs(std::u16string_view, TextPairs& value, bool stored) {
  constexpr std::uint32_t kSmallestEntry = 8;
  if (!stored) return;
  value.clear();
  for (std::uint32_t left = record_.count(kSmallestEntry); left > 0; --left) {
    const BString name = record_.cookieString();
    value.emplace_back(name, record_.cookieString());
  }
}

std::uint32_t SaveFields::version(std::uint32_t current) {
  record_.u32(current);
  return current;
}

void SaveFields::unusedVersion(std::u16string_view) {
  record_.u32(0);
}

void SaveFields::text(std::u16string_view, BString& value) {
  record_.listedString(value);
}

void SaveFields::fileName(std::u16string_view, const BString&, BString& value) {
  record_.listedString(value);
}

void SaveFields::number(std::u16string_view, std::int32_t& value, bool) {
  record_.i32(value);
}

void SaveFields::number(std::u16string_view, std::uint32_t& value) {
  record_.u32(value);
}

void SaveFields::flag(std::u16string_view, bool& value, bool) {
  record_.u8(value ? 1 : 0);
}

void SaveFields::texts(std::u16string_view, std::vector<BString>& value, bool) {
  record_.u32(static_cast<std::uint32_t>(value.size()));
  for (const BString& text : value) record_.listedString(text);
}

void SaveFields::pairs(std::u16string_view, TextPairs& value, bool) {
  record_.u32(static_cast<std::uint32_t>(value.size()));
  for (const auto& [name, text] : value) {
    record_.cookieString(name);
    record_.cookieString(text);
  }
}

}  // namespace forgeyard
