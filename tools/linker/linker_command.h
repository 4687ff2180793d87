#pragma once

#include "platform/text/bstring.h"
#include "typelib/settings.h"

namespace forgeyard {

// The command of a link of one script, with $(OutDir) unexpanded.
BString linkerCommand(ILinkSettings& settings, const BString& script);

}  // namespace forgeyard
