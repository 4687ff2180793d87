#pragma once

#include <string>

#include "platform/com/status.h"

namespace forgeyard {

// A failed status in words, for reports.
std::string statusText(HRESULT status);

}  // namespace forgeyard
