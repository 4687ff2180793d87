#pragma once

#include <optional>
#include <string_view>

#include "engine/component/macro_map.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// Returns the last error found in a command that a user has typed, or nothing for a valid command. `macros`
// are the known names; `runOnce` says whether the command runs once for all files.
std::optional<BString> commandFault(std::u16string_view command, bool runOnce, const MacroMap& macros);

}  // namespace forgeyard
