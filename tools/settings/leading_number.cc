#include "tools/settings/leading_number.h"

#include <algorithm>
#include <limits>

namespace forgeyard {

std::int32_t leadingNumber(std::u16string_view text) {
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  using Limits = std::numeric_limits<std::int32_t>;
  std::int64_t number = 0;
  for (const char16_t digit : text) {
    if (digit < u'0' || digit > u'9') break;
    number = std::min(number * 10 + (digit - u'0'), std::int64_t{Limits::max()} + 1);
  }
  if (negative) number = -number;
  return static_cast<std::int32_t>(std::min(number, std::int64_t{Limits::max()}));
}

}  // namespace forgeyard
