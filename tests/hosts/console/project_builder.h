#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace forgeyard::console {

// What no command of the host does, done in this process.

// The reference projects, at their own place.
std::vector<std::filesystem::path> referenceProjects();

// Gives the first component of that name another one, free or not.
void renameComponent(const std::string& projectFile, const std::string& name, const std::string& newName);

// All that lies in a compound file: the bytes of streams and the class of storages, by their ways.
std::map<std::string, std::string> contentsOf(const std::string& projectFile);

// Puts these bytes in place of a stream of the file's root, or of the storage before the slash. It need not
// be there.
void replaceStream(const std::string& projectFile, const std::string& stream, const std::string& bytes);

}  // namespace forgeyard::console
