#pragma once

#include <string_view>

#include "platform/text/bstring.h"
#include "typelib/configuration.h"

namespace forgeyard {

// A kind of tool whose program goes by the target: where the registry names the programs, and what messages
// call it.
struct TargetToolKind {
  std::string_view registryKey;
  std::u16string_view noun;
};

// The text that opens a tool's command line, or why there is none: a line for the output tab.
struct TargetTool {
  BString command;
  BString problem;  // null where there is a command
};

// Looks up the tool for the configuration's target. Reads the registry once.
TargetTool findTargetTool(IConfiguration* configuration, const TargetToolKind& kind);

}  // namespace forgeyard
