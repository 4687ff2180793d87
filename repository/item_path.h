#pragma once

#include <string>
#include <string_view>

#include "platform/text/bstring.h"

namespace forgeyard::repository {

// Between the paths of items, "$\folder\name" with either separator, and paths below the repository's
// address, "folder/name" ("" for the root). Whatever the first component of an item's path is counts as "$".
//
// The library ends the process for a path that it doesn't take for canonical, so every name passes through
// here. Throws RepositoryError for a name that no repository can hold: "." and "..", control characters, text
// that isn't UTF-8.
std::string relativePath(const BString& spec);
// "$/folder/name"
std::string specOf(std::string_view relative);

// A single name, checked in the same way.
std::string checkedName(const BString& name);

std::string parentOf(std::string_view relative);
std::string_view nameOf(std::string_view relative);
// An empty parent is the root.
std::string joined(std::string_view parent, std::string_view name);
// Whether the path is the folder itself or lies below it.
bool isAtOrBelow(std::string_view relative, std::string_view folder);

bool isValidUtf8(std::string_view text);

// A comment as a repository takes it: UTF-8, lines that end in LF, no other control characters but tabs.
std::string commentText(const BString& comment);

}  // namespace forgeyard::repository
