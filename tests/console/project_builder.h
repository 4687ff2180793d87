#pragma once

#include <string>

namespace forgeyard::console {

// What no command of the host does, done in this process.

// Gives the first component of that name another one, free or not.
void renameComponent(const std::string& projectFile, const std::string& name, const std::string& newName);

// Puts these bytes in place of a stream of the file's root.
void replaceStream(const std::string& projectFile, const std::string& stream, const std::string& bytes);

}  // namespace forgeyard::console
