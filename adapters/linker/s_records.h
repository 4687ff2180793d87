#pragma once

#include <string>
#include <string_view>

namespace forgeyard {

// The records with a header that gives `name`: objcopy puts the path there, and the same program would differ
// from directory to directory. Text without a header stays as it is.
std::string withHeaderName(std::string_view records, std::string_view name);

}  // namespace forgeyard
