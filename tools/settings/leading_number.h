#pragma once

#include <cstdint>
#include <string_view>

namespace forgeyard {

// Returns the decimal number, with an optional sign, at the very start of the text, or 0 if the text doesn't
// start with one. A number beyond 32 bits becomes the nearest that fits.
std::int32_t leadingNumber(std::u16string_view text);

}  // namespace forgeyard
