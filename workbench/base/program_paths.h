#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard::workbench {

// The directory that holds this program, links resolved; empty if the system doesn't tell.
std::string programDirectory();

// The directories of PATH, in order.
std::vector<std::string> searchPath();

// The file that a shell would run for the name: as it stands if it has a slash in it, else the first
// executable file of that name along PATH.
std::optional<std::string> findProgram(std::string_view name);

// Whether the path names a file that may be executed.
bool isExecutable(const std::string& path);

}  // namespace forgeyard::workbench
