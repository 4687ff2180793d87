#include "adapters/linker/s_records.h"

#include <algorithm>
#include <cstdint>

namespace forgeyard {
namespace {

constexpr std::size_t kLongestName = 40;

class Record {
 public:
  explicit Record(std::string_view type) : text_(type) {}

  void add(std::size_t byte) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    sum_ = static_cast<std::uint8_t>(sum_ + byte);
    text_ += kDigits[byte >> 4 & 15];
    text_ += kDigits[byte & 15];
  }
  std::string finish() {
    add(static_cast<std::uint8_t>(~sum_));
    return text_;
  }

 private:
  std::string text_;
  std::uint8_t sum_ = 0;
};

std::string header(std::string_view name) {
  name = name.substr(0, kLongestName);
  constexpr std::size_t kAddressAndSum = 3;
  Record record("S0");
  record.add(name.size() + kAddressAndSum);
  record.add(0);
  record.add(0);
  for (const char c : name) record.add(static_cast<unsigned char>(c));
  return record.finish();
}

}  // namespace

std::string withHeaderName(std::string_view records, std::string_view name) {
  if (!records.starts_with("S0")) return std::string(records);
  return header(name).append(records.substr(std::min(records.find_first_of("\r\n"), records.size())));
}

}  // namespace forgeyard
