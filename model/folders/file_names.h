#pragma once

#include <cstdint>
#include <string_view>

#include "platform/text/bstring.h"

namespace forgeyard {

// The name under which a file is stored: a dot in place of the working directory that it begins with,
// exactly. Component boundaries aren't looked at. Without a working directory the name stays as it is.
BString persistedName(std::u16string_view path, const BString& workingDirectory);

// What is derived from the full names of source files (indexes, shared lists) is valid for one generation.
// Each new name of a source file and each change of a folder's files begins another. One count for the
// module; main thread only.
void fileNamesChanged();
std::uint64_t fileNamesGeneration();

}  // namespace forgeyard
