#pragma once

#include <cstdint>
#include <type_traits>

namespace forgeyard::compound {

// Unsigned integers as compound files store them, at any alignment.

template <class T>
constexpr T loadLittle(const std::uint8_t* at) noexcept {
  static_assert(std::is_unsigned_v<T>);
  std::uint64_t value = 0;
  for (unsigned i = 0; i < sizeof(T); ++i) value |= std::uint64_t{at[i]} << (8 * i);
  return static_cast<T>(value);
}

template <class T>
constexpr void storeLittle(std::uint8_t* at, T value) noexcept {
  static_assert(std::is_unsigned_v<T>);
  for (unsigned i = 0; i < sizeof(T); ++i) at[i] = static_cast<std::uint8_t>(std::uint64_t{value} >> (8 * i));
}

}  // namespace forgeyard::compound
