#pragma once

#include <string>
#include <string_view>

namespace forgeyard {

// The tool `wanted` that belongs to `program`, which is the tool `own` of the same tool chain:
// /opt/t/mipsel-linux-gnu-as and objcopy give /opt/t/mipsel-linux-gnu-objcopy. A program whose name doesn't
// end in `own` tells nothing about its family: then the plain name.
std::string relatedTool(std::string_view program, std::string_view own, std::string_view wanted);

}  // namespace forgeyard
