#pragma once

#include <optional>
#include <string_view>

#include "engine/component/macro_map.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// What is wrong with a command that a user has typed: the last fault found, nothing for a good command.
// `macros` tells which names there are, `runOnce` whether the command runs once for all files.
std::optional<BString> commandFault(std::u16string_view command, bool runOnce, const MacroMap& macros);

}  // namespace forgeyard
