#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace forgeyard::test {

// A stored record spelled out value by value.
class RecordBytes {
 public:
  RecordBytes& number(std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes_ += static_cast<char>(value >> shift & 0xFF);
    return *this;
  }
  RecordBytes& numbers(std::initializer_list<std::uint32_t> values) {
    for (const std::uint32_t value : values) number(value);
    return *this;
  }
  RecordBytes& text(std::u16string_view value) {
    number(static_cast<std::uint32_t>(value.size()));
    for (const char16_t unit : value) {
      bytes_ += static_cast<char>(unit & 0xFF);
      bytes_ += static_cast<char>(unit >> 8);
    }
    return *this;
  }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

}  // namespace forgeyard::test
