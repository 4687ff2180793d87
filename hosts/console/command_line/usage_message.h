#pragma once

#include <CLI/Error.hpp>
#include <string>
#include <vector>

namespace forgeyard::console {

// What is wrong with a command line that the parser has refused, with the nearest that would be right.
std::string usageMessage(const std::vector<std::string>& arguments, const CLI::ParseError& error);

}  // namespace forgeyard::console
