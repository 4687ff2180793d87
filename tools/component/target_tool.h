#pragma once

#include <string_view>

#include "platform/text/bstring.h"
#include "typelib/configuration.h"

namespace forgeyard {

// A kind of tool whose program depends on the target: the registry key that names the programs, and the word
// for the tool in messages.
struct TargetToolKind {
  std::string_view registryKey;
  std::u16string_view noun;
};

// The text that begins a tool's command line, or the reason why there is none, as a line for the output tab.
struct TargetTool {
  BString command;
  BString problem;  // null where there is a command
};

// Looks up the tool for the configuration's target. Reads the registry file once.
TargetTool findTargetTool(IConfiguration* configuration, const TargetToolKind& kind);

}  // namespace forgeyard
