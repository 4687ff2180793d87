#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard::workbench {

// The candidate that a user who typed `wanted` most likely meant: the one with the fewest single-character
// slips between them, case aside. Nothing when none is near enough to be of help.
std::optional<std::string> nearest(std::string_view wanted, std::span<const std::string> candidates);

// The end of an error message about an unknown name: " Did you mean X?", or else what there is, or " There is
// none." `plural` names the kind of thing: "configurations".
std::string suggestion(std::string_view wanted, std::span<const std::string> candidates,
                       std::string_view plural);

// "a, b and c".
std::string enumeration(std::span<const std::string> names);

}  // namespace forgeyard::workbench
