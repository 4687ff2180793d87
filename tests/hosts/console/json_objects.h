#pragma once

#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "tests/e2e/running_program.h"

namespace forgeyard::console {

using Json = nlohmann::ordered_json;

// The lines of a program under --json. Fails the test where one is no object, has a type or a field that
// docs/output.md doesn't list, where the last is not the result with the program's exit code, or where
// something was said elsewhere.
std::vector<Json> objectsOf(const e2e::Outcome& outcome);

// Those of one type.
std::vector<Json> ofType(const std::vector<Json>& objects, std::string_view type);

}  // namespace forgeyard::console
