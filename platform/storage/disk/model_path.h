#pragma once

#include <string>

#include "platform/text/bstring.h"

namespace forgeyard::compound {

// The host path of a model path. Throws STG_E_PATHNOTFOUND for a path that can name no file here.
std::string hostPathOf(const BString& path);

}  // namespace forgeyard::compound
