#include "platform/com/guid.h"

#include <cstdio>

namespace forgeyard {

std::string formatGuid(const Guid& guid) {
  std::array<char, 37> text{};
  const auto& d = guid.data4;
  std::snprintf(text.data(), text.size(), "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X", guid.data1,
                guid.data2, guid.data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
  return text.data();
}

}  // namespace forgeyard
