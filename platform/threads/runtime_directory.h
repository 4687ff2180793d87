#pragma once

#include <string>
#include <string_view>

namespace forgeyard {

// The directory in which this user's named events and mutexes live, made if it is missing: what the
// environment's FORGEYARD_RUNTIME_DIR names, else "forgeyard" in XDG_RUNTIME_DIR, else /tmp/forgeyard-<uid>.
// It must belong to this user and be writable by nobody else. Throws std::system_error that names the
// directory and the reason.
std::string runtimeDirectory();

// The same name, with nothing made or looked at.
std::string runtimeDirectoryName();

// Throws as above unless the directory is there, this user's own and writable by nobody else.
void requireOwnRuntimeDirectory(const std::string& directory);

// The host path of a named object's file in there. Names are one path component of letters, digits, "-", "_"
// and
// "."; anything else throws std::system_error.
std::string runtimeFile(std::string_view name, std::string_view extension);

}  // namespace forgeyard
