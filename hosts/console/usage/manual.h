#pragma once

#include <string>
#include <vector>

namespace forgeyard::console {

// Manual pages, made of the tables that --help is made of: one of the whole program, and one for each command
// of one word and each group of commands.

// "forgeyard", "forgeyard-build", "forgeyard-component" and so on.
std::vector<std::string> manualPages();
// In troff's language, for section 1. The page must be one of those.
std::string manualPage(const std::string& page);

}  // namespace forgeyard::console
