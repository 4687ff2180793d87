#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace forgeyard {

// A class or interface identifier in the byte order of stored files.
struct Guid {
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::array<std::uint8_t, 8> data4{};

  friend constexpr bool operator==(const Guid&, const Guid&) = default;
  friend constexpr auto operator<=>(const Guid&, const Guid&) = default;
};

inline constexpr Guid GUID_NULL{};

// "51645AD7-3B0D-11D1-817F-00AA002676D3", with or without braces, in any case; nothing for other text.
constexpr std::optional<Guid> parseGuid(std::string_view text) {
  if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
  if (text.size() != 36) return std::nullopt;
  std::array<std::uint8_t, 16> bytes{};
  std::size_t digits = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (i == 8 || i == 13 || i == 18 || i == 23) {
      if (c != '-') return std::nullopt;
      continue;
    }
    int value = 0;
    if (c >= '0' && c <= '9') {
      value = c - '0';
    } else if (c >= 'a' && c <= 'f') {
      value = c - 'a' + 10;
    } else if (c >= 'A' && c <= 'F') {
      value = c - 'A' + 10;
    } else {
      return std::nullopt;
    }
    bytes[digits / 2] = static_cast<std::uint8_t>(bytes[digits / 2] * 16 + value);
    ++digits;
  }
  Guid guid;
  guid.data1 = static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
               static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
  guid.data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
  guid.data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
  for (std::size_t i = 0; i < 8; ++i) guid.data4[i] = bytes[8 + i];
  return guid;
}

// An identifier written in the source: text that is none doesn't compile.
consteval Guid guid(std::string_view text) {
  return parseGuid(text).value();
}

// Upper case without braces.
std::string formatGuid(const Guid& guid);

}  // namespace forgeyard

template <>
struct std::hash<forgeyard::Guid> {
  std::size_t operator()(const forgeyard::Guid& guid) const noexcept {
    std::uint64_t tail = 0;
    std::memcpy(&tail, guid.data4.data(), sizeof tail);
    return std::hash<std::uint64_t>{}((static_cast<std::uint64_t>(guid.data1) << 32 |
                                       static_cast<std::uint64_t>(guid.data2) << 16 | guid.data3) ^
                                      tail * 0x9E3779B97F4A7C15u);
  }
};
