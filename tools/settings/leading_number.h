#pragma once

#include <cstdint>
#include <string_view>

namespace forgeyard {

// The decimal number with an optional sign at the very start of the text; 0 for text that doesn't start with
// one. A number beyond 32 bits is the nearest that fits.
std::int32_t leadingNumber(std::u16string_view text);

}  // namespace forgeyard
